#include "dictation/FlowController.h"

#include "base/Platform.h"
#include "base/SoundPlayer.h"
#include "cloud/speech/Transcriber.h"
#include "dictation/FlowText.h"
#include "history/HistoryStore.h"
#include "preferences/Prefs.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto meterInterval = 50ms;
constexpr auto recordingLimit = 570s;
constexpr auto closingLimit = 2s;
constexpr auto longestSilence = 3s; // without one sample: a quiet room gives samples, too
// long enough to read the message
constexpr auto messageDuration = 3500ms;
constexpr auto successDuration = 900ms;
constexpr qsizetype historyLength = 50;

} // namespace

FlowController::FlowController(Platform &platform, Prefs &prefs, Transcriber &transcriber, LabsClient &labs,
                               const LabsSession &labsSession, const LabsAnswerMode &answerMode,
                               HistoryStore &historyStore)
    : m_platform(platform),
      m_clock(platform.clock),
      m_prefs(prefs),
      m_transcriber(transcriber),
      m_labs(labs),
      m_labsSession(labsSession),
      m_answerMode(answerMode),
      m_historyStore(historyStore),
      m_recorder(platform.microphone, platform.folders, platform.volumes),
      m_overlay(platform.clock),
      m_inserter(platform.pasteboard, platform.keyPoster, platform.trust, platform.presence, prefs,
                 platform.clock)
{
    connect(&m_historyStore, &HistoryStore::recordsChanged, this, &FlowController::adoptHistory);
    adoptHistory();
}

FlowController::~FlowController()
{
    m_stop.request_stop();
    // Nobody dropped it: what is long enough to be transcribed is there for the next start.
    if (const auto path = m_recorder.abandon(); path && QFileInfo(*path).size() <= minimumFileSize)
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
        m_platform.keyTaps, m_prefs.hotkeySpec(), [this] { schedule(&FlowController::toggle); },
        [this] { schedule(&FlowController::cancelRecording); });
    if (!monitor->start())
        return;
    monitor->setInterceptEscape(m_state == FlowState::recording);
    m_hotkey = std::move(monitor);
    Q_EMIT hotkeyActiveChanged();
}

void FlowController::followMachine()
{
    m_keys = std::make_shared<const KeyTaps::Listener>(
        [this](const KeyChord &chord) { updateHotkey(HotkeySpec::of(chord.keyCode, chord.flags)); });
    m_platform.keyTaps.follow(m_keys);
    m_presence = std::make_shared<const std::function<void()>>([this] { presenceChanged(); });
    m_platform.presence.follow(m_presence);
}

// Called on the thread of the tap: what follows is done when this one is free, in the order of the taps.
void FlowController::schedule(void (FlowController::*step)())
{
    QMetaObject::invokeMethod(this, step, Qt::QueuedConnection);
}

void FlowController::updateHotkey(const HotkeySpec &spec)
{
    m_prefs.hotkeySpec.set(spec);
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
    const QString message = tr("Signed out. Sign in again in Settings.");
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
        if (!giveUpStart())
            beginRecording();
        return;
    case FlowState::recording:
        return finishRecording(false);
    case FlowState::processing:
        return;
    }
}

void FlowController::captureNextTranscript(Capture into)
{
    if (m_state != FlowState::idle || !m_recorder.isIdle())
        return;
    m_pendingCapture = std::move(into);
    beginRecording();
}

void FlowController::beginRecording()
{
    if (m_state != FlowState::idle || !m_recorder.isIdle())
        return;
    if (m_platform.microphone.authorization() != Microphone::Authorization::authorized) {
        m_platform.microphone.requestAccess();
        fail(tr("Microphone access not granted. Check System Settings, Privacy, Microphone"));
        Q_EMIT startAnswered(true);
        return;
    }
    m_recorder.start([this](const std::expected<void, FlowError> &started) {
        if (started) {
            recordingBegan();
        } else {
            const FlowError &error = started.error();
            fail(error.kind == FlowError::Kind::platform
                     ? tr("Couldn't start recording: %1").arg(error.description)
                     : error.description);
        }
        Q_EMIT startAnswered(!started);
    });
}

void FlowController::recordingBegan()
{
    m_awake = m_platform.presence.delaySleep();
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

/// A start that the microphone has not answered is a recording of no length.
bool FlowController::giveUpStart()
{
    if (m_state != FlowState::idle || m_recorder.isIdle())
        return false;
    if (const auto path = m_recorder.abandon())
        QFile::remove(*path);
    m_pendingCapture = nullptr;
    Q_EMIT startAnswered(false);
    return true;
}

void FlowController::startMetering()
{
    m_overlay.model().clearLevels();
    m_deadReadings = 0;
    m_meterTimer = m_clock.every(meterInterval, [this] { readMeter(); });
}

void FlowController::readMeter()
{
    Recording *recorder = m_recorder.recorder();
    if (!recorder)
        return;
    if (const auto loss = recorder->loss())
        return finishLost(*loss);
    // Counted, not timed: a program that was stopped meanwhile has not heard nothing.
    const qint64 before = std::exchange(m_heard, recorder->heard());
    m_deadReadings = m_heard == before ? m_deadReadings + 1 : 0;
    if (m_deadReadings >= longestSilence / meterInterval)
        return finishLost(Recording::Loss::microphone);
    recorder->updateMeters();
    m_overlay.push(recorder->isRecording() ? FlowText::meterLevel(recorder->averagePower(0)) : 0);
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

/// How a recording came to its end.
struct FlowController::Ending
{
    std::optional<QString> warning; ///< while it is transcribed, unless it ended as the user wanted
    std::optional<FlowError> loss;  ///< what is to blame where too little was heard
};

void FlowController::finishRecording(bool limitReached)
{
    finish(limitReached ? Ending{.warning = tr("Recording limit reached, transcribing")} : Ending{});
}

void FlowController::finishLost(Recording::Loss loss)
{
    finish(loss == Recording::Loss::disk
               ? Ending{tr("Disk full, transcribing what was heard"), FlowError::lowDiskSpace()}
               : Ending{tr("Microphone lost, transcribing what was heard"), FlowError::recorderFailed()});
}

void FlowController::finish(const Ending &ending)
{
    if (giveUpStart() || !m_recorder.recorder())
        return;
    const Clock::Duration recorded =
        m_recordingStart ? m_clock.monotonic() - *m_recordingStart : Clock::Duration::zero();
    const double duration = std::chrono::duration<double>(recorded).count();
    m_recordingStart.reset();
    endRecording();
    const auto closed = [this, duration, ending](const std::optional<QString> &path) {
        m_limitTimer.reset();
        accept(path, duration, ending);
    };
    // The sound server or the disk may never answer; what was heard is in the file all the same.
    m_limitTimer = m_clock.after(closingLimit, [this, closed] {
        const auto told = closed; // the timer goes with it
        told(m_recorder.abandon());
    });
    m_recorder.stop(closed);
}

void FlowController::accept(const std::optional<QString> &path, double duration, const Ending &ending)
{
    if (!path || (duration <= minimumDuration && !ending.loss)) {
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
        return fail(ending.loss.value_or(FlowError::nothingHeard()).description);
    }
    setState(FlowState::processing);
    if (ending.warning)
        m_overlay.show(FlowState::idle, ending.warning, OverlayTone::warning);
    else
        m_overlay.show(FlowState::processing, std::nullopt, OverlayTone::success);
    playSound(u"Tink"_s);
    transcribeAndDeliver(*path, duration, size);
}

/// Nobody is there to say any more, or to receive keys; and who comes back is told what became of it.
void FlowController::presenceChanged()
{
    if (m_platform.presence.isAway())
        return finishRecording(false);
    if (const auto notice = std::exchange(m_noticeForReturn, std::nullopt);
        notice && m_state == FlowState::idle)
        showNotice(*notice);
}

void FlowController::cancelRecording()
{
    if (giveUpStart() || !m_recorder.recorder())
        return;
    m_pendingCapture = nullptr;
    const auto path = m_recorder.abandon();
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

void FlowController::showNotice(const QString &notice)
{
    setLastError(notice);
    m_overlay.show(FlowState::idle, notice, OverlayTone::warning);
    m_overlay.hide(messageDuration);
}

void FlowController::showOutcome(const std::optional<QString> &notice)
{
    m_overlay.show(FlowState::idle, notice, notice ? OverlayTone::warning : OverlayTone::success);
    m_overlay.hide(notice ? Clock::Duration(messageDuration) : Clock::Duration(successDuration));
}

void FlowController::playSound(const QString &name)
{
    if (m_prefs.soundsEnabled())
        m_platform.sounds.play(name);
}

void FlowController::setState(FlowState state)
{
    if (m_state == state)
        return;
    m_state = state;
    if (state == FlowState::idle)
        m_awake.reset();
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
