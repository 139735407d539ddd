#pragma once

#include "platform/linux/sound/InputSources.h"
#include "platform/linux/sound/PulseLoop.h"

#include <chrono>

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/subscribe.h>

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
    PulseConnection(const PulseConnection &) = delete;
    PulseConnection &operator=(const PulseConnection &) = delete;

    /// Where things stand. Connects first if need be, and waits a moment for an answer under way.
    State settledState();

    /// Whether the server has a real input. Waits like `settledState`.
    bool hasInput();

    PulseLoop &loop() { return m_loop; }

    // The rest is for those who hold the loop's lock.

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
    void settled(std::unique_lock<PulseLoop> &lock);

    // Called by libpulse.
    void contextChanged();
    void greet();
    void sourceEvent(pa_subscription_event_type_t event, uint32_t index);
    void learn(const pa_source_info &source);
    void askForDefault();

    PulseLoop m_loop;
    pa_context *m_context = nullptr;
    pa_time_event *m_retry = nullptr;
    std::chrono::milliseconds m_pause;
    std::chrono::steady_clock::time_point m_began;
    State m_state = State::connecting;
    unsigned m_generation = 0;
    InputSources m_sources;
};
