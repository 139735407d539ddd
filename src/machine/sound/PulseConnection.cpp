#include "machine/sound/PulseConnection.h"

#include <algorithm>
#include <utility>

#include <pulse/error.h>
#include <pulse/operation.h>
#include <pulse/proplist.h>

namespace {

using namespace std::chrono_literals;

constexpr auto grace = 200ms;         // a server on this computer answers in a few
constexpr auto shortestPause = 250ms; // a server that is restarted is back in about a second
constexpr auto longestPause = std::chrono::milliseconds(30s);

pa_context *newContext(pa_mainloop_api *api)
{
    pa_proplist *facts = pa_proplist_new();
    pa_proplist_sets(facts, PA_PROP_APPLICATION_NAME, "Sayvane");
    pa_proplist_sets(facts, PA_PROP_APPLICATION_ID, "com.sayvane.app");
    pa_proplist_sets(facts, PA_PROP_APPLICATION_ICON_NAME, "audio-input-microphone");
    pa_context *context = pa_context_new_with_proplist(api, nullptr, facts);
    pa_proplist_free(facts);
    return context;
}

void release(pa_operation *operation)
{
    if (operation)
        pa_operation_unref(operation);
}

} // namespace

void InputSources::insert(uint32_t index, const QByteArray &name, bool isMonitor)
{
    m_sources.insert_or_assign(index, Source{name, isMonitor});
}

void InputSources::clear()
{
    m_sources.clear();
    m_default.clear();
}

bool InputSources::hasInput() const
{
    return std::ranges::any_of(m_sources, [](const auto &entry) { return !entry.second.isMonitor; });
}

bool InputSources::isMonitor(uint32_t index) const
{
    const auto found = m_sources.find(index);
    return found != m_sources.end() && found->second.isMonitor;
}

QByteArray InputSources::choice() const
{
    const auto isDefault = [this](const auto &entry) { return entry.second.name == m_default; };
    const auto isReal = [](const auto &entry) { return !entry.second.isMonitor; };
    const auto byDefault = std::ranges::find_if(m_sources, isDefault);
    // A default that is not listed yet has just been plugged in: the server knows better.
    if (byDefault == m_sources.end() ? !m_default.isEmpty() : isReal(*byDefault))
        return {};
    const auto real = std::ranges::find_if(m_sources, isReal);
    return real == m_sources.end() ? QByteArray() : real->second.name;
}

PulseConnection::PulseConnection() : m_pause(shortestPause)
{
    m_loop.post([this] { connect(); });
}

PulseConnection::~PulseConnection()
{
    m_loop.post([this] {
        m_grace.reset();
        disconnect();
    });
    m_loop.end();
}

void PulseConnection::knock()
{
    m_loop.post([this] {
        if (m_state == State::absent || m_state == State::refused)
            connect();
    });
}

void PulseConnection::whenSettled(PulseLoop::Task call)
{
    if (m_state == State::absent || m_state == State::refused)
        connect();
    // Counted from the first attempt, so that a server that hangs costs the moment only once.
    const auto left = m_began + grace - std::chrono::steady_clock::now();
    if (m_state != State::connecting || left <= 0s)
        return call();
    m_waiting.push_back(std::move(call));
    if (!m_grace)
        m_grace.emplace(m_loop, std::chrono::duration_cast<std::chrono::microseconds>(left),
                        [this] { callWaiting(); });
}

void PulseConnection::callWaiting()
{
    m_grace.reset();
    for (const PulseLoop::Task &call : std::exchange(m_waiting, {}))
        call();
}

void PulseConnection::connect()
{
    disconnect();
    m_state = State::connecting;
    m_began = std::chrono::steady_clock::now();
    m_context = newContext(m_loop.api());
    pa_context_set_state_callback(
        m_context, [](pa_context *, void *self) { static_cast<PulseConnection *>(self)->contextChanged(); },
        this);
    const bool begun = pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) >= 0;
    if (!begun && m_state == State::connecting) { // an address that makes no sense is not called back
        retryLater();
        settle(State::absent);
    }
}

void PulseConnection::disconnect()
{
    m_retry.reset();
    m_sources.clear();
    sourcesChanged();
    if (!m_context)
        return;
    pa_context_set_state_callback(m_context, nullptr, nullptr);
    pa_context_set_subscribe_callback(m_context, nullptr, nullptr);
    pa_context_disconnect(m_context);
    pa_context_unref(std::exchange(m_context, nullptr));
}

void PulseConnection::retryLater()
{
    m_retry.emplace(m_loop, m_pause, [this] { connect(); });
    m_pause = std::min(2 * m_pause, longestPause);
}

void PulseConnection::settle(State state)
{
    m_isRefused = state == State::refused;
    m_state = state;
    callWaiting();
}

void PulseConnection::contextChanged()
{
    const pa_context_state_t state = pa_context_get_state(m_context);
    if (state == PA_CONTEXT_READY) {
        greet();
    } else if (state == PA_CONTEXT_FAILED || state == PA_CONTEXT_TERMINATED) {
        const int cause = pa_context_errno(m_context);
        if (m_state == State::ready)
            qCInfo(soundLog) << "The audio server is gone:" << pa_strerror(cause);
        m_sources.clear();
        sourcesChanged();
        retryLater();
        settle(cause == PA_ERR_ACCESS || cause == PA_ERR_AUTHKEY ? State::refused : State::absent);
    }
}

void PulseConnection::greet()
{
    const auto event = [](pa_context *, pa_subscription_event_type_t type, uint32_t index, void *self) {
        static_cast<PulseConnection *>(self)->sourceEvent(type, index);
    };
    pa_context_set_subscribe_callback(m_context, event, this);
    // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): the enumerators are bits
    constexpr auto news = pa_subscription_mask_t(PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER);
    release(pa_context_subscribe(m_context, news, nullptr, nullptr));
    askForDefault();
    // Answers come in order: with the end of this list all is known.
    const auto listed = [](pa_context *, const pa_source_info *source, int end, void *data) {
        auto *self = static_cast<PulseConnection *>(data);
        if (end == 0) {
            self->learn(*source);
            return;
        }
        self->m_pause = shortestPause;
        ++self->m_generation;
        self->settle(State::ready);
    };
    release(pa_context_get_source_info_list(m_context, listed, this));
}

void PulseConnection::sourceEvent(pa_subscription_event_type_t event, uint32_t index)
{
    if ((event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK) == PA_SUBSCRIPTION_EVENT_SERVER) {
        askForDefault();
        return;
    }
    const int kind = event & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
    if (kind == PA_SUBSCRIPTION_EVENT_REMOVE) {
        m_sources.remove(index);
        sourcesChanged();
    }
    if (kind != PA_SUBSCRIPTION_EVENT_NEW) // neither name nor kind of a source ever change
        return;
    const auto found = [](pa_context *, const pa_source_info *source, int end, void *self) {
        if (end == 0) {
            static_cast<PulseConnection *>(self)->learn(*source);
        }
    };
    release(pa_context_get_source_info_by_index(m_context, index, found, this));
}

void PulseConnection::learn(const pa_source_info &source)
{
    m_sources.insert(source.index, source.name, source.monitor_of_sink != PA_INVALID_INDEX);
    sourcesChanged();
}

void PulseConnection::askForDefault()
{
    const auto told = [](pa_context *, const pa_server_info *server, void *self) {
        if (server)
            static_cast<PulseConnection *>(self)->m_sources.setDefault(server->default_source_name);
    };
    release(pa_context_get_server_info(m_context, told, this));
}
