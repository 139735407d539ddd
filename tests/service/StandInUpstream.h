#pragma once

#include <httplib.h>

#include <QByteArray>
#include <QString>

#include <atomic>
#include <future>
#include <thread>

/// A server of speech and chat on this machine that answers what the test tells it to.
class StandInUpstream
{
public:
    int status = 200;
    std::string body = "{}";
    std::string retryAfter;
    std::atomic<bool> holdsBack = false; ///< does not answer until it is destroyed

    StandInUpstream()
    {
        m_server.Post(".*", [this](const httplib::Request &request, httplib::Response &response) {
            last = request;
            ++requests;
            if (holdsBack)
                m_released.wait();
            response.status = status;
            response.set_content(body, "application/json");
            if (!retryAfter.empty())
                response.set_header("Retry-After", retryAfter);
        });
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }
    ~StandInUpstream()
    {
        m_release.set_value();
        end();
    }
    void end()
    {
        m_server.stop();
        if (m_thread.joinable())
            m_thread.join();
    }

    QString address() const { return QStringLiteral("http://127.0.0.1:%1/api/v1/").arg(m_port); }
    QByteArray lastPart(const char *name) const { return QByteArray::fromStdString(last.get_file_value(name).content); }

    httplib::Request last;
    std::atomic<int> requests = 0;

private:
    httplib::Server m_server;
    std::promise<void> m_release;
    std::shared_future<void> m_released = m_release.get_future().share();
    int m_port = 0;
    std::thread m_thread;
};
