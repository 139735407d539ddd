#pragma once

#include "base/Provider.h"

#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QStringList>

#include <stop_token>

class Keychain;
class Pasteboard;
class Prefs;
class Transcriber;
class Workspace;

/// The rows that keep the user's own API key of the chosen provider, and ask the provider which models it
/// serves, to take valid ones into use.
class KeyRow final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString apiKey READ apiKey WRITE setApiKey NOTIFY changed)
    Q_PROPERTY(bool showKey READ showKey WRITE setShowKey NOTIFY changed)
    Q_PROPERTY(bool keyFieldFocused READ keyFieldFocused WRITE setKeyFieldFocused NOTIFY changed)
    Q_PROPERTY(bool keySaved READ keySaved NOTIFY changed)
    Q_PROPERTY(QString keyError READ keyError NOTIFY changed)
    Q_PROPERTY(QString keyNotice READ keyNotice NOTIFY changed)
    Q_PROPERTY(bool keyStored READ keyStored NOTIFY changed)
    Q_PROPERTY(QString keyPlaceholder READ keyPlaceholder NOTIFY changed)
    Q_PROPERTY(QString consoleAddress READ consoleAddress NOTIFY changed)
    Q_PROPERTY(QString connectionStatus READ connectionStatus NOTIFY changed)
    Q_PROPERTY(QString connectionDetail READ connectionDetail NOTIFY changed)
    Q_PROPERTY(QString connectionError READ connectionError NOTIFY changed)
    Q_PROPERTY(bool testingConnection READ testingConnection NOTIFY changed)
public:
    struct Needs
    {
        Prefs &prefs;
        Keychain &keychain;
        Transcriber &transcriber;
        Pasteboard &pasteboard;
        Workspace &workspace;
    };
    explicit KeyRow(const Needs &needs);
    ~KeyRow() override;

    /// What is typed; never the stored key.
    const QString &apiKey() const { return m_apiKey; }
    void setApiKey(const QString &text);
    /// Whether the field shows letters instead of dots.
    bool showKey() const { return m_showKey; }
    void setShowKey(bool show);
    bool keyFieldFocused() const { return m_keyFieldFocused; }
    void setKeyFieldFocused(bool focused);

    /// Whether the last save succeeded.
    bool keySaved() const { return m_keySaved; }
    const QString &keyError() const { return m_keyError; }
    const QString &keyNotice() const { return m_keyNotice; }

    /// Whether the current provider has a key, as last read, and its last four characters.
    bool keyStored() const { return m_keyStored; }
    const QString &keySuffix() const { return m_keySuffix; }
    QString keyPlaceholder() const;
    QString consoleAddress() const;

    /// Whether the keychain has yet to say if there is a key.
    bool isPending() const;
    void refreshKeyState();
    /// Looks for a key that is not known; the owner of a closed keyring may be asked to open it.
    void lookForKey();

    /// Stores what is typed, trimmed, and tests the connection with it.
    Q_INVOKABLE void saveKey();
    /// Fills the field from the clipboard; nothing is saved yet.
    Q_INVOKABLE void pasteKey();
    Q_INVOKABLE void removeKey();
    /// Opens the page where such keys are made.
    Q_INVOKABLE void openConsole();

    /// The lines of the last test's result; empty without one.
    const QString &connectionStatus() const { return m_connectionStatus; }
    const QString &connectionDetail() const { return m_connectionDetail; }
    const QString &connectionError() const { return m_connectionError; }
    bool testingConnection() const { return m_testingConnection; }
    /// A test that is under way is given up for the new one.
    Q_INVOKABLE void testConnection();

    /// Forgets what was typed and said for the provider chosen before.
    void startOver();

Q_SIGNALS:
    void changed();

private:
    QString account() const;
    void emptyField();
    void report(const QString &error, const QString &notice);
    QCoro::Task<> takeFromClipboard();
    QCoro::Task<> save(QString key, QString account);
    QCoro::Task<> remove(QString account);
    QCoro::Task<int32_t> keep(QString key, QString account);
    QCoro::Task<> test(Provider provider, std::stop_token stop);
    void applyResolvedModels(const QStringList &available, Provider provider);
    void clearConnectionResult();

    Prefs &m_prefs;
    Keychain &m_keychain;
    Transcriber &m_transcriber;
    Pasteboard &m_pasteboard;
    Workspace &m_workspace;

    QString m_apiKey;
    bool m_showKey = false;
    bool m_keyFieldFocused = false;
    bool m_keySaved = false;
    QString m_keyError;
    QString m_keyNotice;
    bool m_keyStored = false;
    QString m_keySuffix;
    bool m_ignoreNextKeyChange = false;
    bool m_saving = false;
    QString m_connectionStatus;
    QString m_connectionDetail;
    QString m_connectionError;
    bool m_testingConnection = false;
    std::stop_source m_test; // stopped when a newer test begins
    std::stop_source m_stop; // stopped when this object goes away
};
