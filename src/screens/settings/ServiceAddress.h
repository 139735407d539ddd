#pragma once

#include <QObject>
#include <QString>

class Prefs;

/// The row that edits where the hosted service lives. Nothing is stored before it is applied.
class ServiceAddress final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString serviceURLDraft READ serviceURLDraft WRITE setServiceURLDraft NOTIFY changed)
    Q_PROPERTY(QString serviceURLError READ serviceURLError NOTIFY changed)
    Q_PROPERTY(bool canApply READ canApply NOTIFY changed)
public:
    explicit ServiceAddress(Prefs &prefs);

    const QString &serviceURLDraft() const { return m_serviceURLDraft; }
    void setServiceURLDraft(const QString &text);
    /// Why the address was refused; empty when it was not.
    const QString &serviceURLError() const { return m_serviceURLError; }
    /// Whether the field differs from the address in use.
    bool canApply() const;

    /// Takes the address into use, or refuses it and shows the one in use again; an empty field resets.
    Q_INVOKABLE void applyServiceURL();
    /// Back to the address that the program came with.
    Q_INVOKABLE void resetServiceURL();

Q_SIGNALS:
    void changed();

private:
    void store(const QString &address);
    /// Fills the field on the program's behalf, which leaves the error alone.
    void show(const QString &address);

    Prefs &m_prefs;
    QString m_serviceURLDraft;
    QString m_serviceURLError;
    bool m_ignoreNextServiceURLChange = false;
};
