#pragma once

#include "program/Doctor.h"
#include "program/SignInSteps.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QVariantMap>

#include <functional>
#include <stop_token>

class AccountSignIn;
class AccountStatus;
class FlowController;
class LabsAnswerMode;
class Prefs;
class Transcriber;

/// The running program as others see it on the session bus; docs/CONTROL.md tells what each call does.
class ControlService final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.sayvane.Sayvane1")
public:
    struct Served
    {
        Platform &platform;
        FlowController &flow;
        AccountSignIn &signIn;
        const AccountStatus &account;
        const LabsAnswerMode &answerMode;
        Prefs &prefs;
        Transcriber &transcriber;
    };
    struct Commands
    {
        /// Shows the section, the one last shown where the text is empty; false when there is none of
        /// that name.
        std::function<bool(const QString &section)> open;
        std::function<void()> quit;
        std::function<Checkup()> examineTray; ///< how the icon in the panel stands
    };
    ControlService(const Served &served, Commands commands);
    ~ControlService() override;

    /// Begins to answer under the profile's name; false when there is no bus or the name is taken.
    bool publish(const QString &profile);

public Q_SLOTS:
    Q_SCRIPTABLE void Toggle();
    Q_SCRIPTABLE void Start();
    Q_SCRIPTABLE void Stop();
    Q_SCRIPTABLE void Cancel();
    Q_SCRIPTABLE void Open(const QString &section);
    Q_SCRIPTABLE void Quit();
    Q_SCRIPTABLE QVariantMap Status() const;
    Q_SCRIPTABLE QList<QVariantMap> Doctor();
    Q_SCRIPTABLE QString LastTranscript() const;
    Q_SCRIPTABLE QString Transcribe(const QString &path, QString &notice);
    Q_SCRIPTABLE void SendCode(const QString &email);
    Q_SCRIPTABLE QString SignIn(const QString &code);
    Q_SCRIPTABLE void SignOut();
    Q_SCRIPTABLE void KeepFailedRecordings(bool keep);

Q_SIGNALS:
    Q_SCRIPTABLE void StateChanged(const QString &state);

private:
    void replyToStart();
    void refuse(const QString &sentence) const;
    QCoro::Task<> examine(QDBusMessage request, QDBusConnection bus);
    QCoro::Task<> transcribe(QString path, QDBusMessage request, QDBusConnection bus);
    QCoro::Task<> sendCode(QString email, QDBusMessage request, QDBusConnection bus);
    QCoro::Task<> signIn(QString code, QDBusMessage request, QDBusConnection bus);
    QCoro::Task<> signOut(QDBusMessage request, QDBusConnection bus);

    Platform &m_platform;
    FlowController &m_flow;
    AccountSignIn &m_signIn;
    const AccountStatus &m_account;
    const LabsAnswerMode &m_answerMode;
    Prefs &m_prefs;
    Transcriber &m_transcriber;
    Commands m_commands;
    SignInSteps m_steps;
    std::stop_source m_stop;
};
