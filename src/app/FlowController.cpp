#include "app/FlowController.h"

#include "app/FlowText.h"
#include "history/HistoryStore.h"
#include "platform/Platform.h"
#include "platform/SoundPlayer.h"
#include "settings/Defaults.h"
#include "settings/Prefs.h"
#include "speech/Transcriber.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto meterInterval = 50ms;
constexpr auto recordingLimit = 570s;
// long enough to read the message
constexpr auto messageDuration = 3500ms;
constexpr auto successDuration = 900ms;
constexpr qsizetype historyLength = 50;

} // namespace

FlowController::FlowController(Platform &platform, Defaults &defaults, const Prefs &prefs,
                               Transcriber &transcriber, LabsClient &labs, const LabsAnswerMode &answerMode,
                               HistoryStore &historyStore)
    : m_platform(platform),
      m_clock(platform.clock),
      m_defaults(defaults),
      m_prefs(prefs),
      m_transcriber(transcriber),
      m_labs(labs),
      m_answerMode(answerMode),
      m_historyStore(historyStore),
      m_recorder(platform.microphone, platform.folders, platform.volumes),
      m_overlay(platform.clock),
      m_inserter(platform.pasteboard, platform.keyPoster, platform.trust, prefs, platform.clock)
{
    connect(&m_historyStore, &HistoryStore::recordsChanged, this, &FlowController::adoptHistory);
    adoptHistory();
}

FlowController::~FlowController()
{
    m_stop.request_stop();
    if (const auto path = m_recorder.stop())
        QFile::remove(*path);
}

void FlowController::adoptHistory()
{
    QStringList texts;
    for (const Dictation &dictation :
         m_historyStore.records().first(std::min(historyLength, m_historyStore.records().size())))
        texts.append(dictation.text);
    if (texts == m_history)
        return;
    m_history = std::move(texts);
    Q_EMIT historyChanged();
}

void FlowController::start()
{
    if (m_hotkey)
        return;
    auto monitor = std::make_unique<HotkeyMonitor>(
        m_platform.keyTaps, HotkeySpec::decode(m_defaults.text(PrefsKey::hotkeySpec)),
        [this] { schedule(&FlowController::toggle); },
        [this] { schedule(&FlowController::cancelRecording); });
    if (!monitor->start())
        return;
    monitor->setInterceptEscape(m_state == FlowState::recording);
    m_hotkey = std::move(monitor);
    Q_EMIT hotkeyActiveChanged();
}

// The tap waits for its answer while a callback runs: what follows from it is done right after.
void FlowController::schedule(void (FlowController::*step)())
{
    QMetaObject::invokeMethod(this, step, Qt::QueuedConnection);
}

void FlowController::updateHotkey(const HotkeySpec &spec)
{
    m_defaults.set(PrefsKey::hotkeySpec, spec.jsonString());
    dropHotkey();
    start();
    if (m_hotkey)
        m_hotkey->setInterceptEscape(m_state == FlowState::recording);
}

void FlowController::hotkeyPermissionLost()
{
    dropHotkey();
}

void FlowController::dropHotkey()
{
    if (!m_hotkey)
        return;
    m_hotkey->stop();
    m_hotkey.reset();
    Q_EMIT hotkeyActiveChanged();
}

void FlowController::reportSignedOut()
{
    const QString message = u"Signed out. Sign in again in Settings."_s;
    setLastError(message);
    if (m_state == FlowState::recording)
        return;
    m_overlay.show(FlowState::idle, message, OverlayTone::failure);
    m_overlay.hide(messageDuration);
}

void FlowController::toggle()
{
    switch (m_state) {
    case FlowState::idle:
        return beginRecording();
    case FlowState::recording:
        return finishRecording(false);
    case FlowState::processing:
        return;
    }
}

void FlowController::captureNextTranscript(Capture into)
{
    if (m_state != FlowState::idle)
        return;
    m_pendingCapture = std::move(into);
    beginRecording();
}

void FlowController::beginRecording()
{
    if (m_state != FlowState::idle)
        return;
    if (m_platform.microphone.authorization() != Microphone::Authorization::authorized) {
        m_platform.microphone.requestAccess();
        return fail(u"Microphone access not granted. Check System Settings, Privacy, Microphone"_s);
    }
    if (const auto started = m_recorder.start(); !started) {
        const FlowError &error = started.error();
        return fail(error.kind == FlowError::Kind::platform
                        ? u"Couldn't start recording: "_s + error.description
                        : error.description);
    }
    m_recordingStart = m_clock.monotonic();
    setState(FlowState::recording);
    if (m_hotkey)
        m_hotkey->setInterceptEscape(true);
    m_overlay.show(FlowState::recording, std::nullopt, OverlayTone::success);
    startMetering();
    startRecordingLimit();
    m_transcriber.warmUp(m_stop.get_token());
    playSound(u"Pop"_s);
}

void FlowController::startMetering()
{
    m_overlay.model().clearLevels();
    m_meterTimer = m_clock.every(meterInterval, [this] {
        double level = 0;
        if (Recording *recorder = m_recorder.recorder(); recorder && recorder->isRecording()) {
            recorder->updateMeters();
            level = FlowText::meterLevel(recorder->averagePower(0));
        }
        m_overlay.push(level);
    });
}

void FlowController::stopMetering()
{
    m_meterTimer.reset();
    m_overlay.model().clearLevels();
}

void FlowController::startRecordingLimit()
{
    m_limitTimer = m_clock.after(recordingLimit, [this] { finishRecording(true); });
}

/// What every way out of a recording has in common.
void FlowController::endRecording()
{
    if (m_hotkey)
        m_hotkey->setInterceptEscape(false);
    stopMetering();
    m_limitTimer.reset();
}

void FlowController::finishRecording(bool limitReached)
{
    if (m_state != FlowState::recording)
        return;
    const Clock::Duration recorded =
        m_recordingStart ? m_clock.monotonic() - *m_recordingStart : Clock::Duration::zero();
    const double duration = std::chrono::duration<double>(recorded).count();
    m_recordingStart.reset();
    endRecording();
    const auto path = m_recorder.stop();
    if (!path || duration <= minimumDuration) {
        m_pendingCapture = nullptr;
        setState(FlowState::idle);
        m_overlay.hide(0s);
        if (path)
            QFile::remove(*path);
        return;
    }
    const qint64 size = QFileInfo(*path).size(); // 0 when it cannot be read
    if (size <= minimumFileSize) {
        QFile::remove(*path);
        return fail(FlowError::nothingHeard().description);
    }
    setState(FlowState::processing);
    if (limitReached)
        m_overlay.show(FlowState::idle, u"Recording limit reached, transcribing"_s, OverlayTone::warning);
    else
        m_overlay.show(FlowState::processing, std::nullopt, OverlayTone::success);
    playSound(u"Tink"_s);
    transcribeAndDeliver(*path, duration, size);
}

void FlowController::cancelRecording()
{
    if (m_state != FlowState::recording)
        return;
    m_pendingCapture = nullptr;
    const auto path = m_recorder.stop();
    endRecording();
    m_recordingStart.reset();
    setState(FlowState::idle);
    if (path)
        QFile::remove(*path);
    m_overlay.hide(0s);
    playSound(u"Funk"_s);
}

void FlowController::fail(const QString &message)
{
    setLastError(message);
    setState(FlowState::idle);
    m_pendingCapture = nullptr;
    endRecording();
    m_overlay.show(FlowState::idle, message, OverlayTone::failure);
    m_overlay.hide(messageDuration);
    playSound(u"Basso"_s);
}

void FlowController::showOutcome(const std::optional<QString> &notice)
{
    m_overlay.show(FlowState::idle, notice, notice ? OverlayTone::warning : OverlayTone::success);
    m_overlay.hide(notice ? Clock::Duration(messageDuration) : Clock::Duration(successDuration));
}

void FlowController::playSound(const QString &name)
{
    if (m_prefs.isEnabled(PrefsKey::soundsEnabled))
        m_platform.sounds.play(name);
}

void FlowController::setState(FlowState state)
{
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}

void FlowController::setLastTranscript(const QString &text)
{
    if (m_lastTranscript == text)
        return;
    m_lastTranscript = text;
    Q_EMIT lastTranscriptChanged();
}

void FlowController::setLastError(const std::optional<QString> &error)
{
    if (m_lastError == error)
        return;
    m_lastError = error;
    Q_EMIT lastErrorChanged();
}
