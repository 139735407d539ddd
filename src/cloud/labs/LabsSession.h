#pragma once

#include "cloud/labs/LabsClient.h"
#include "cloud/labs/LabsMode.h"
#include "cloud/labs/LabsProvider.h"

#include <QCoroTask>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <QVariant>
#include <QVariantList>

#include <optional>
#include <stop_token>

class AccountStatus;
class Clock;
class LabsClient;
class Prefs;

/// One exchange with an assistant, kept in memory only.
struct LabsHistoryItem
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id CONSTANT)
    Q_PROPERTY(QDateTime date MEMBER date CONSTANT)
    Q_PROPERTY(QString provider READ providerTitle CONSTANT)
    Q_PROPERTY(QString mode READ modeTitle CONSTANT)
    Q_PROPERTY(QString prompt MEMBER prompt CONSTANT)
    Q_PROPERTY(QString text MEMBER text CONSTANT)
public:
    QUuid id;
    QDateTime date; ///< of the answer
    LabsProvider provider = LabsProvider::claude;
    LabsMode mode = LabsMode::answer;
    QString prompt; ///< as sent
    QString text;   ///< of the answer

    bool operator==(const LabsHistoryItem &) const = default;

private:
    QString providerTitle() const { return LabsProviderNames::title(provider); }
    QString modeTitle() const { return LabsModes::title(mode); }
};

/// What is being asked of an assistant and what it answered, for the screen that shows it.
///
/// It is the business of whoever is signed in: signing out forgets it and drops a question under way. What is
/// offered is asked anew when somebody signs in or out, and of another service when its address changes.
///
/// Texts that are not there are empty. QML knows providers and modes by their raw values.
class LabsSession final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString prompt READ prompt WRITE setPrompt NOTIFY changed)
    Q_PROPERTY(QString context READ context WRITE setContext NOTIFY changed)
    Q_PROPERTY(QString mode READ modeRaw WRITE setModeRaw NOTIFY changed)
    Q_PROPERTY(QStringList availableProviders READ availableProvidersRaw NOTIFY changed)
    Q_PROPERTY(bool loadingProviders READ loadingProviders NOTIFY changed)
    Q_PROPERTY(QString providersError READ providersError NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(bool canAsk READ canAsk NOTIFY changed)
    /// A `LabsAnswer`, or undefined.
    Q_PROPERTY(QVariant answer READ answerValue NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    /// Of `LabsHistoryItem`.
    Q_PROPERTY(QVariantList history READ historyValues NOTIFY historyChanged)
public:
    struct Collaborators
    {
        LabsClient &client;
        AccountStatus &account;
        const Prefs &prefs;
        Clock &clock;
    };
    explicit LabsSession(const Collaborators &with);
    ~LabsSession() override;

    const QString &prompt() const { return m_prompt; }
    Q_INVOKABLE void setPrompt(const QString &prompt);
    /// The text to reply to or to rewrite.
    const QString &context() const { return m_context; }
    Q_INVOKABLE void setContext(const QString &context);
    LabsMode mode() const { return m_mode; }
    void setMode(LabsMode mode);
    /// What the service offers, in the order of lists.
    const QList<LabsProvider> &availableProviders() const { return m_availableProviders; }
    /// The one last chosen as long as the service offers it, else the first that it offers; Claude while none
    /// is.
    LabsProvider selectedProvider() const;
    /// Whom a dictation goes to in answer mode: as selected, or the one last chosen where it is not known
    /// what the service offers.
    LabsProvider answeringProvider() const;
    bool loadingProviders() const { return m_loadingProviders; }
    const QString &providersError() const { return m_providersError; }
    bool busy() const { return m_busy; }
    bool canAsk() const;
    const std::optional<LabsAnswer> &answer() const { return m_answer; }
    const QString &error() const { return m_error; }
    /// The last exchanges, newest first, five at most.
    const QList<LabsHistoryItem> &history() const { return m_history; }

    /// Whether the screen has loaded the providers in this run of the program.
    bool didLoadProviders() const { return m_didLoadProviders; }
    void setDidLoadProviders(bool did) { m_didLoadProviders = did; }

    /// Asks the service which assistants it offers.
    Q_INVOKABLE void loadProviders();
    /// Sends the prompt to the assistant; does nothing unless `canAsk`.
    void ask(LabsProvider provider);
    /// As above, by the raw value; an unknown one asks nobody.
    Q_INVOKABLE void ask(const QString &provider);

Q_SIGNALS:
    void changed();
    void historyChanged();

private:
    void followAccount();
    void forgetProviders();
    std::optional<LabsProvider> chosenProvider() const;
    QCoro::Task<> fetchProviders(std::stop_token stop);
    QCoro::Task<> fetchAnswer(LabsProvider provider, LabsMode mode, QString prompt, QString context,
                              std::stop_token stop);

    QString modeRaw() const { return LabsModes::rawValue(m_mode); }
    void setModeRaw(const QString &mode);
    QStringList availableProvidersRaw() const;
    QVariant answerValue() const { return m_answer ? QVariant::fromValue(*m_answer) : QVariant(); }
    QVariantList historyValues() const;

    LabsClient &m_client;
    AccountStatus &m_account;
    const Prefs &m_prefs;
    Clock &m_clock;
    bool m_signedIn;
    int m_accountSession;

    QString m_prompt;
    QString m_context;
    LabsMode m_mode = LabsMode::answer;
    QList<LabsProvider> m_availableProviders;
    bool m_loadingProviders = false;
    QString m_providersError;
    bool m_busy = false;
    std::optional<LabsAnswer> m_answer;
    QString m_error;
    QList<LabsHistoryItem> m_history;
    bool m_didLoadProviders = false;
    std::stop_source m_listing;  // stopped when a newer list is asked for
    std::stop_source m_question; // stopped when the session is another or none
    std::stop_source m_stop;     // stopped when this object goes away
};
