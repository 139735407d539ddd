#pragma once

#include "base/Clock.h"
#include "base/FlowState.h"
#include "base/Presence.h"
#include "dictation/AudioRecorder.h"
#include "dictation/HotkeyMonitor.h"
#include "dictation/OverlayPanel.h"
#include "dictation/TextInserter.h"

#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

class HistoryStore;
class LabsAnswerMode;
class LabsClient;
class LabsSession;
class Prefs;
class SoundPlayer;
class TemporaryFile;
class Transcriber;
struct Dictation;
struct Platform;

/// The one owner of a dictation: from a tap of the shortcut to text in the front application.
///
/// It runs one dictation at a time; while one is being transcribed and pasted, taps are ignored.
class FlowController final : public QObject
{
    Q_OBJECT
public:
    /// A recording must last longer than this, in seconds, to be transcribed.
    static constexpr double minimumDuration = 0.4;
    /// A recording's file must be larger than this, in bytes, to be transcribed.
    static constexpr qint64 minimumFileSize = 16000;

    FlowController(Platform &platform, Prefs &prefs, Transcriber &transcriber, LabsClient &labs,
                   const LabsSession &labsSession, const LabsAnswerMode &answerMode,
                   HistoryStore &historyStore);
    ~FlowController() override;

    FlowState state() const { return m_state; }
    /// The text of the last finished dictation.
    const QString &lastTranscript() const { return m_lastTranscript; }
    /// The texts of the newest stored dictations, newest first, 50 at most.
    const QStringList &history() const { return m_history; }
    /// Whether the global shortcut is installed and running.
    bool hotkeyActive() const { return m_hotkey != nullptr; }
    /// The last failure or notice; a clean success clears it.
    const std::optional<QString> &lastError() const { return m_lastError; }

    OverlayPanel &overlay() { return m_overlay; }
    /// The only one: a second one would take the dictation that waits on the clipboard for the user's own.
    TextInserter &inserter() { return m_inserter; }
    /// The installed shortcut; null when there is none.
    HotkeyMonitor *hotkey() const { return m_hotkey.get(); }

    /// Installs the stored shortcut, unless one is installed.
    void start();
    /// From now on ends a recording when the user leaves the machine, and takes over the keys that the
    /// desktop's settings give the shortcut.
    void followMachine();
    /// Stores the shortcut and puts it in the place of the installed one.
    void updateHotkey(const HotkeySpec &spec);
    /// The session no longer lets us watch keys.
    void hotkeyPermissionLost();
    /// The service ended the session.
    void reportSignedOut();

    /// What a tap of the shortcut does.
    void toggle();
    /// Starts a recording, unless a dictation is under way.
    void beginRecording();
    /// Ends the recording and sends it on its way; does nothing unless recording.
    void finishRecording(bool limitReached);
    /// Drops the recording; does nothing unless recording. That, and a start that comes to nothing, are the
    /// only ways in which something long enough to be transcribed goes at once.
    void cancelRecording();
    /// Records a dictation whose text goes to the callback instead of being pasted and stored; only when
    /// idle.
    void captureNextTranscript(std::function<void(const QString &)> into);

Q_SIGNALS:
    void stateChanged();
    void lastTranscriptChanged();
    void historyChanged();
    void hotkeyActiveChanged();
    void lastErrorChanged();
    /// The microphone has answered a start; where it failed, `lastError` says why. A start that was given up
    /// has not failed.
    void startAnswered(bool failed);
    /// The file of a dictation that failed is now its listeners' to keep for the user.
    void recordingKept(const QString &path);

private:
    using Capture = std::function<void(const QString &)>;
    struct Ending;

    /// A transcript on its way to the user.
    struct Draft
    {
        QString raw;
        QString text;
        qint64 transcribeMs = 0;
        std::optional<qint64> cleanupMs;
        std::optional<QString> chatModel;
        std::optional<QString> notice;
    };

    QCoro::Task<> transcribeAndDeliver(QString filePath, double duration, qint64 fileSize);
    QCoro::Task<Draft> cleanedUp(Draft draft, std::stop_token stop);
    QCoro::Task<Draft> answered(Draft draft, std::stop_token stop);
    QCoro::Task<> paste(QString text, std::stop_token stored, std::stop_token stop);
    void deliverCapture(const Draft &draft);
    void failTranscription(const QString &message, TemporaryFile &recording);
    Dictation record(const Draft &draft, double duration, qint64 fileSize) const;

    void fail(const QString &message);
    void recordingBegan();
    void finishLost(Recording::Loss loss);
    void finish(const Ending &ending);
    void accept(const std::optional<QString> &path, double duration, const Ending &ending);
    bool giveUpStart();
    void endRecording();
    void presenceChanged();
    void startMetering();
    void readMeter();
    void stopMetering();
    void startRecordingLimit();
    void playSound(const QString &name);
    void dropHotkey();
    void adoptHistory();
    void showNotice(const QString &notice);
    void showOutcome(const std::optional<QString> &notice);
    void schedule(void (FlowController::*step)());

    void setState(FlowState state);
    void setLastTranscript(const QString &text);
    void setLastError(const std::optional<QString> &error);

    Platform &m_platform;
    Clock &m_clock;
    Prefs &m_prefs;
    Transcriber &m_transcriber;
    LabsClient &m_labs;
    const LabsSession &m_labsSession;
    const LabsAnswerMode &m_answerMode;
    HistoryStore &m_historyStore;

    AudioRecorder m_recorder;
    OverlayPanel m_overlay;
    TextInserter m_inserter;
    std::unique_ptr<HotkeyMonitor> m_hotkey;

    FlowState m_state = FlowState::idle;
    QString m_lastTranscript;
    QStringList m_history;
    std::optional<QString> m_lastError;
    /// On the monotonic clock: a wall clock that is set meanwhile must not make a recording too short.
    std::optional<Clock::Duration> m_recordingStart;
    std::unique_ptr<Timer> m_meterTimer;
    qint64 m_heard = 0;     // at the last reading of the meter
    int m_deadReadings = 0; // in a row, without a new sample
    std::unique_ptr<Timer> m_limitTimer;
    Capture m_pendingCapture;
    Listener m_presence;
    std::shared_ptr<const KeyTaps::Listener> m_keys;
    std::unique_ptr<Presence::Wakefulness> m_awake; // while a dictation is under way
    std::optional<QString> m_noticeForReturn;       // what the user who is away has not seen
    std::stop_source m_stop;                        // stopped when the controller goes away
};
