#include "dictation/FlowController.h"

#include "base/Platform.h"
#include "base/Sleep.h"
#include "cloud/labs/LabsAnswerMode.h"
#include "cloud/labs/LabsClient.h"
#include "cloud/labs/LabsSession.h"
#include "cloud/speech/Transcriber.h"
#include "dictation/FlowText.h"
#include "history/HistoryStore.h"
#include "preferences/Prefs.h"

#include <QFile>
#include <QUuid>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// logind gives five seconds before it sleeps all the same.
constexpr auto storeLimit = 4s;
// A cleanup of fewer words never reached a model.
constexpr qint64 minimumCleanupWords = 4;

} // namespace

/// A file that is deleted with this object unless it is kept; that it cannot be deleted is nobody's error.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString &path) : m_path(path) {}
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile() { remove(); }

    void remove()
    {
        if (!m_path.isEmpty())
            QFile::remove(m_path);
        m_path.clear();
    }

    const QString &path() const { return m_path; }

    void keep() { m_path.clear(); }

private:
    QString m_path;
};

// After each wait the controller may be gone, and then a stop was requested.
QCoro::Task<> FlowController::transcribeAndDeliver(QString filePath, double duration, qint64 fileSize)
{
    TemporaryFile recording(filePath);
    const std::stop_token stop = m_stop.get_token();
    // The owner of the clipboard delivers it while the service is at work.
    const auto clipboard = m_pendingCapture ? nullptr : m_inserter.prepare();
    const Clock::Duration began = m_clock.monotonic();
    const Transcriber::Text transcript = co_await m_transcriber.transcribe(filePath, stop);
    if (stop.stop_requested())
        co_return recording.keep(); // the program ends before the words are safe; its next start finds them
    if (!transcript)
        co_return failTranscription(transcript.error().description, recording);

    Draft draft;
    draft.raw = transcript->trimmed();
    draft.text = draft.raw;
    draft.transcribeMs = FlowText::elapsedMilliseconds(m_clock.monotonic() - began);
    if (draft.raw.isEmpty())
        co_return failTranscription(FlowError::nothingHeard().description, recording);
    if (m_prefs.cleanupEnabled()) {
        draft = co_await cleanedUp(draft, stop);
        if (stop.stop_requested())
            co_return recording.keep();
    }
    if (m_pendingCapture)
        co_return deliverCapture(draft);
    if (m_prefs.provider() == Provider::sayvane && m_answerMode.enabled()) {
        draft = co_await answered(draft, stop);
        if (stop.stop_requested())
            co_return recording.keep();
    }

    setLastTranscript(draft.text);
    // The disk works while the paste gets ready. Each caller holds the source: who waits may be its only
    // owner.
    const std::stop_source stored;
    const auto tellStored = [stored] { std::stop_source(stored).request_stop(); };
    const std::stop_callback leaving(stop, tellStored);
    m_historyStore.append(record(draft, duration, fileSize), filePath, tellStored);
    setLastError(draft.notice);
    showOutcome(draft.notice);
    co_await paste(draft.text, stored.get_token(), stop);
    if (stop.stop_requested() || !stored.stop_requested())
        recording.keep(); // the history deletes it once the words are safe
    if (!stop.stop_requested())
        setState(FlowState::idle);
}

QCoro::Task<FlowController::Draft> FlowController::cleanedUp(Draft draft, std::stop_token stop)
{
    const Clock::Duration began = m_clock.monotonic();
    const QString raw = draft.raw;
    const Transcriber::Text cleaned = co_await m_transcriber.cleanup(raw, stop);
    if (stop.stop_requested())
        co_return draft;
    if (!cleaned) {
        draft.notice = tr("Pasted raw transcript. Cleanup failed: %1")
                           .arg(FlowText::shortened(cleaned.error().description));
        co_return draft;
    }
    if (const QString text = cleaned->trimmed(); !text.isEmpty())
        draft.text = text;
    if (Dictation::wordCountOf(raw) >= minimumCleanupWords) {
        draft.cleanupMs = FlowText::elapsedMilliseconds(m_clock.monotonic() - began);
        if (m_prefs.provider() != Provider::sayvane)
            draft.chatModel = m_prefs.chatModel();
    }
    co_return draft;
}

QCoro::Task<FlowController::Draft> FlowController::answered(Draft draft, std::stop_token stop)
{
    m_overlay.show(FlowState::idle, tr("Answering…"), OverlayTone::warning);
    const LabsProvider provider = m_labsSession.answeringProvider();
    const QString question = draft.text;
    const QString language = m_prefs.language();
    const QString context;
    const auto answer = co_await m_labs.answer(question, provider, LabsMode::answer, language, context, stop);
    if (answer)
        draft.text = answer->text;
    else
        draft.notice =
            tr("Pasted transcript. Answer mode failed: %1").arg(FlowText::shortened(answer.error().message));
    co_return draft;
}

void FlowController::deliverCapture(const Draft &draft)
{
    const Capture capture = std::exchange(m_pendingCapture, nullptr);
    setLastTranscript(draft.text);
    setLastError(draft.notice);
    showOutcome(draft.notice);
    setState(FlowState::idle);
    capture(draft.text);
}

Dictation FlowController::record(const Draft &draft, double duration, qint64 fileSize) const
{
    const Provider provider = m_prefs.provider();
    const bool isOwnKey = provider != Provider::sayvane;
    return {.id = QUuid::createUuid(),
            .date = m_clock.now(),
            .durationSeconds = duration,
            .wordCount = Dictation::wordCountOf(draft.text),
            .text = draft.text,
            .rawText = draft.raw != draft.text ? std::optional(draft.raw) : std::nullopt,
            .transcribeMs = draft.transcribeMs,
            .cleanupMs = draft.cleanupMs,
            .audioBytes = fileSize,
            .providerRaw = Providers::rawValue(provider),
            .transcriptionModel = isOwnKey ? std::optional(m_prefs.transcriptionModel()) : std::nullopt,
            .chatModel = draft.chatModel};
}

QCoro::Task<> FlowController::paste(QString text, std::stop_token stored, std::stop_token stop)
{
    const bool pasted = co_await m_inserter.insert(text, stop, stored);
    if (!pasted && !stop.stop_requested()) // the machine may be waiting to sleep
        co_await sleepFor(m_clock, storeLimit, stop, stored);
    if (pasted || stop.stop_requested())
        co_return;
    const bool isAway = m_platform.presence.isAway();
    const QString message =
        !m_inserter.reachesClipboard()
            ? tr("Not copied: this desktop's clipboard is out of reach. Open Sayvane to copy the text.")
        : isAway ? tr("Copied to clipboard while you were away.")
                 : tr("Copied to clipboard. Grant Accessibility to paste automatically.");
    if (isAway)
        m_noticeForReturn = message;
    showNotice(message);
}

void FlowController::failTranscription(const QString &message, TemporaryFile &recording)
{
    fail(message);
    if (!m_prefs.keepFailedRecordings())
        return;
    const QString path = recording.path();
    recording.keep();
    Q_EMIT recordingKept(path);
}
