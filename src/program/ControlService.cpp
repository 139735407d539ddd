#include "program/ControlService.h"

#include "base/Platform.h"
#include "cloud/account/AccountSignIn.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/labs/LabsAnswerMode.h"
#include "cloud/speech/Transcriber.h"
#include "dictation/FlowController.h"
#include "preferences/Prefs.h"
#include "program/ControlInterface.h"
#include "program/FileTranscript.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusMetaType>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString nameOf(FlowState state)
{
    switch (state) {
    case FlowState::idle:
        return u"idle"_s;
    case FlowState::recording:
        return u"recording"_s;
    case FlowState::processing:
        return u"processing"_s;
    }
    Q_UNREACHABLE();
}

} // namespace

ControlService::ControlService(const Served &served, Commands commands)
    : m_platform(served.platform),
      m_flow(served.flow),
      m_signIn(served.signIn),
      m_account(served.account),
      m_answerMode(served.answerMode),
      m_prefs(served.prefs),
      m_transcriber(served.transcriber),
      m_commands(std::move(commands)),
      m_steps(served.signIn, served.account)
{
    connect(&m_flow, &FlowController::stateChanged, this,
            [this] { Q_EMIT StateChanged(nameOf(m_flow.state())); });
}

ControlService::~ControlService()
{
    m_stop.request_stop();
}

bool ControlService::publish(const QString &profile)
{
    qDBusRegisterMetaType<QList<QVariantMap>>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() &&
           bus.registerObject(ControlInterface::path, this,
                              QDBusConnection::ExportScriptableSlots |
                                  QDBusConnection::ExportScriptableSignals) &&
           bus.registerService(ControlInterface::busName(profile));
}

void ControlService::refuse(const QString &sentence) const
{
    sendErrorReply(ControlInterface::failed, sentence);
}

/// The start that follows is answered when the microphone has answered it.
void ControlService::replyToStart()
{
    setDelayedReply(true);
    const auto reply = [this, request = message(), bus = connection()](bool failed) {
        bus.send(failed ? request.createErrorReply(ControlInterface::failed,
                                                   m_flow.lastError().value_or(QString()))
                        : request.createReply());
    };
    connect(&m_flow, &FlowController::startAnswered, this, reply, Qt::SingleShotConnection);
}

void ControlService::Toggle()
{
    if (m_flow.state() == FlowState::idle)
        replyToStart();
    m_flow.toggle();
}

void ControlService::Start()
{
    if (m_flow.state() == FlowState::processing) {
        refuse(u"The last dictation is not finished yet."_s);
    } else if (m_flow.state() == FlowState::idle) {
        replyToStart();
        m_flow.beginRecording();
    }
}

void ControlService::Stop()
{
    m_flow.finishRecording(false);
}

void ControlService::Cancel()
{
    m_flow.cancelRecording();
}

void ControlService::Open(const QString &section)
{
    if (!m_commands.open(section))
        refuse(u"There is no section %1."_s.arg(section));
}

void ControlService::Quit()
{
    m_commands.quit();
}

QVariantMap ControlService::Status() const
{
    QVariantMap status{
        {u"version"_s, QCoreApplication::applicationVersion()},
        {u"state"_s, nameOf(m_flow.state())},
        {u"shortcut"_s, m_prefs.hotkeySpec().displayString()},
        {u"shortcutActive"_s, m_flow.hotkeyActive()},
        {u"provider"_s, Providers::rawValue(m_prefs.provider())},
        {u"language"_s, m_prefs.language()},
        {u"signedIn"_s, m_account.signedIn()},
        {u"answerMode"_s, m_answerMode.enabled()},
        {u"keepsFailedRecordings"_s, m_prefs.keepFailedRecordings()},
    };
    if (const auto email = m_account.email(); email && m_account.signedIn())
        status.insert(u"email"_s, *email);
    if (const auto seconds = m_account.remainingSeconds())
        status.insert(u"remainingSeconds"_s, *seconds);
    if (const auto &error = m_flow.lastError())
        status.insert(u"lastError"_s, *error);
    for (const Checkup &each : m_platform.trust.checkups())
        status.insert(each.subject + u"By"_s, each.means);
    return status;
}

QList<QVariantMap> ControlService::Doctor()
{
    setDelayedReply(true);
    examine(message(), connection());
    return {};
}

QCoro::Task<> ControlService::examine(QDBusMessage request, QDBusConnection bus)
{
    const std::stop_token stop = m_stop.get_token();
    const QList<Checkup> all = co_await Doctor::examine({.platform = m_platform,
                                                         .flow = m_flow,
                                                         .prefs = m_prefs,
                                                         .transcriber = m_transcriber,
                                                         .tray = m_commands.examineTray()},
                                                        stop);
    if (stop.stop_requested())
        co_return;
    QList<QVariantMap> told;
    for (const Checkup &each : all) {
        QVariantMap entry;
        entry.insert(u"subject"_s, each.subject);
        entry.insert(u"means"_s, each.means);
        entry.insert(u"works"_s, each.works);
        entry.insert(u"advice"_s, each.advice);
        told.append(entry);
    }
    bus.send(request.createReply(QVariant::fromValue(told)));
}

QString ControlService::LastTranscript() const
{
    if (!m_flow.lastTranscript().isEmpty())
        return m_flow.lastTranscript();
    if (!m_flow.history().isEmpty())
        return m_flow.history().first();
    refuse(u"Nothing was dictated yet."_s);
    return {};
}

QString ControlService::Transcribe(const QString &path, QString &)
{
    setDelayedReply(true);
    transcribe(path, message(), connection());
    return {};
}

QCoro::Task<> ControlService::transcribe(QString path, QDBusMessage request, QDBusConnection bus)
{
    const std::stop_token stop = m_stop.get_token();
    const FileTranscript made = co_await FileTranscript::of(path, m_transcriber, m_prefs, stop);
    if (stop.stop_requested())
        co_return;
    bus.send(made.error.isEmpty() ? request.createReply(QVariantList{made.text, made.notice})
                                  : request.createErrorReply(ControlInterface::failed, made.error));
}

void ControlService::KeepFailedRecordings(bool keep)
{
    m_prefs.keepFailedRecordings.set(keep);
}

void ControlService::SendCode(const QString &email)
{
    setDelayedReply(true);
    sendCode(email, message(), connection());
}

QCoro::Task<> ControlService::sendCode(QString email, QDBusMessage request, QDBusConnection bus)
{
    const QString error = co_await m_steps.sendCode(email);
    bus.send(error.isEmpty() ? request.createReply()
                             : request.createErrorReply(ControlInterface::failed, error));
}

QString ControlService::SignIn(const QString &code)
{
    setDelayedReply(true);
    signIn(code, message(), connection());
    return {};
}

QCoro::Task<> ControlService::signIn(QString code, QDBusMessage request, QDBusConnection bus)
{
    const std::stop_token stop = m_stop.get_token();
    const QString error = co_await m_steps.submit(code);
    if (stop.stop_requested())
        co_return;
    bus.send(error.isEmpty() ? request.createReply(m_steps.email())
                             : request.createErrorReply(ControlInterface::failed, error));
}

void ControlService::SignOut()
{
    setDelayedReply(true);
    signOut(message(), connection());
}

QCoro::Task<> ControlService::signOut(QDBusMessage request, QDBusConnection bus)
{
    const std::stop_token stop = m_stop.get_token();
    const bool isOut = co_await m_signIn.leave();
    if (stop.stop_requested())
        co_return;
    bus.send(isOut ? request.createReply()
                   : request.createErrorReply(ControlInterface::failed, m_signIn.errorText()));
}
