#include "service/upstream/UpstreamClient.h"

#include "service/machine/Log.h"
#include "service/upstream/UpstreamFault.h"

#include <httplib.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

using namespace std::chrono_literals;

namespace {

constexpr auto connectLimit = 10s;
constexpr auto watchStep = 200ms;
constexpr size_t longestAnswer = size_t{4} << 20; // bytes

/// Ends a request from outside: the library waits for the other side only, and byte by byte.
class Watch
{
public:
    Watch(httplib::Client &client, std::chrono::seconds patience, const std::function<bool()> &isUnwanted)
        : m_deadline(std::chrono::steady_clock::now() + patience),
          m_thread([this, &client, &isUnwanted](const std::stop_token &token) {
              std::mutex mutex;
              std::unique_lock lock(mutex);
              std::condition_variable_any never;
              while (!never.wait_for(lock, token, watchStep, [&] { return token.stop_requested(); })) {
                  m_late = m_late || std::chrono::steady_clock::now() >= m_deadline;
                  m_unwanted = m_unwanted || isUnwanted();
                  if (m_late || m_unwanted)
                      client.stop(); // again and again: it may have been about to connect
              }
          })
    {
    }

    bool isLate() const { return m_late; }
    bool isUnwanted() const { return m_unwanted; }

private:
    const std::chrono::steady_clock::time_point m_deadline;
    std::atomic<bool> m_late = false;
    std::atomic<bool> m_unwanted = false;
    std::jthread m_thread; // last: it uses the others
};

} // namespace

std::expected<std::string, Refusal> UpstreamClient::post(Message message, std::chrono::seconds patience,
                                                         const std::function<bool()> &isUnwanted) const
{
    httplib::Client client(m_upstream.origin);
    client.set_connection_timeout(connectLimit);
    client.set_read_timeout(patience + 1s); // the watch is the one that ends it
    client.set_write_timeout(patience + 1s);
    client.set_tcp_nodelay(true);

    std::string answer;
    httplib::Request request;
    request.method = "POST";
    request.path = m_upstream.path + message.path;
    request.headers = {{"Content-Type", message.contentType}, {"Accept-Encoding", "identity"}};
    if (!m_upstream.key.empty())
        request.headers.emplace("Authorization", "Bearer " + m_upstream.key);
    request.body = std::move(message.body);
    request.content_receiver = [&answer](const char *bytes, size_t size, uint64_t, uint64_t) {
        if (answer.size() + size > longestAnswer)
            return false;
        answer.append(bytes, size);
        return true;
    };
    httplib::Response response;
    httplib::Error error = httplib::Error::Success;
    const Watch watch(client, patience, isUnwanted);
    const bool answered = client.send(request, response, error);
    if (answered && response.status == 200)
        return answer;
    if (watch.isUnwanted())
        return std::unexpected(Refusal::stopping());
    Log::note("upstream: " + (answered         ? "status " + std::to_string(response.status)
                              : watch.isLate() ? "no answer in " + std::to_string(patience.count()) + " s"
                                               : httplib::to_string(error)));
    if (answered) {
        return std::unexpected(
            UpstreamFault::answered(response.status, answer, response.get_header_value("Retry-After")));
    }
    if (watch.isLate())
        return std::unexpected(UpstreamFault::tooSlow());
    return std::unexpected(error == httplib::Error::Canceled ? UpstreamFault::notUnderstood()
                                                             : UpstreamFault::unreachable());
}
