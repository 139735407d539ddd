#pragma once

#include "machine/sound/PulseLoop.h"

#include <QByteArray>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/subscribe.h>

/// The sound sources of an audio server, and which of them a dictation listens to.
///
/// A monitor is a source that repeats what a sink plays; it is no microphone.
class InputSources final
{
public:
    void insert(uint32_t index, const QByteArray &name, bool isMonitor);
    void remove(uint32_t index) { m_sources.erase(index); }
    void setDefault(const QByteArray &name) { m_default = name; }
    void clear();

    /// Whether any source is a real input.
    bool hasInput() const;

    bool isMonitor(uint32_t index) const;

    /// The source to ask the server for: empty for its default, which is the rule. Only when the
    /// default is a monitor, or there is none, is it the name of the first real input instead.
    QByteArray choice() const;

private:
    struct Source
    {
        QByteArray name;
        bool isMonitor = false;
    };

    std::map<uint32_t, Source> m_sources; // by the server's index: the oldest first
    QByteArray m_default;
};

/// The program's one connection to the audio server, PulseAudio or PipeWire, kept open all the time.
///
/// It starts to connect when it is made and connects again by itself when the server went away: soon
/// at first, then ever more rarely, and at once when somebody asks. It never starts a server. While it
/// stands, the server tells what changes; nothing is polled.
class PulseConnection final
{
public:
    enum class State {
        connecting,
        ready,
        refused, // a server runs, but does not let us in
        absent,  // no server answers
    };

    PulseConnection();
    ~PulseConnection();
    Q_DISABLE_COPY_MOVE(PulseConnection)

    /// Where things stand. From any thread, as `hasInput` and `isRefused`.
    State state() const { return m_state; }

    /// Whether the server has a real input; false while there is no server.
    bool hasInput() const { return m_hasInput; }

    /// Whether the server that answered last turned us away.
    bool isRefused() const { return m_isRefused; }

    /// Connects now rather than at the next attempt, where there is no connection. From any thread.
    void knock();

    PulseLoop &loop() { return m_loop; }

    // The rest is for the loop's thread.

    /// Connects if need be and calls as soon as it is known where things stand, after a moment at the latest.
    void whenSettled(PulseLoop::Task call);

    /// The context to work with; null while there is none.
    pa_context *context() const { return m_state == State::ready ? m_context : nullptr; }

    const InputSources &sources() const { return m_sources; }

    /// A number that grows with each new connection: what a former one held is gone.
    unsigned generation() const { return m_generation; }

private:
    void connect();
    void disconnect();
    void retryLater();
    void settle(State state);
    void callWaiting();
    void sourcesChanged() { m_hasInput = m_sources.hasInput(); }

    // Called by libpulse.
    void contextChanged();
    void greet();
    void sourceEvent(pa_subscription_event_type_t event, uint32_t index);
    void learn(const pa_source_info &source);
    void askForDefault();

    PulseLoop m_loop;
    pa_context *m_context = nullptr;
    std::optional<LoopTimer> m_retry;
    std::optional<LoopTimer> m_grace; // while somebody waits
    std::vector<PulseLoop::Task> m_waiting;
    std::chrono::milliseconds m_pause;
    std::chrono::steady_clock::time_point m_began;
    std::atomic<State> m_state = State::connecting;
    std::atomic<bool> m_hasInput = false;
    std::atomic<bool> m_isRefused = false;
    unsigned m_generation = 0;
    InputSources m_sources;
};
