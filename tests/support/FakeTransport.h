#pragma once

#include "base/Completion.h"
#include "base/HttpTransport.h"

#include <QCoreApplication>
#include <QObject>

#include <deque>
#include <memory>

/// A network that answers what a test says, at once from a queue or when the test calls `answer`.
class FakeTransport final : public HttpTransport
{
public:
    using Result = std::expected<HttpResponse, TransportError>;

    ~FakeTransport() override { QCoreApplication::sendPostedEvents(&m_loop); }

    QCoro::Task<Result> send(HttpRequest request, std::stop_token stop) override;

    /// Answers the oldest request that is still waiting.
    void answer(const Result &result);
    void answer(int status, const QByteArray &body) { answer(HttpResponse{status, {}, body}); }
    /// Answers the next request as soon as it comes.
    void willAnswer(const Result &result) { m_prepared.push_back(result); }
    void willAnswer(int status, const QByteArray &body, const QList<std::pair<QByteArray, QByteArray>> &headers = {})
    {
        willAnswer(HttpResponse{status, headers, body});
    }

    /// How many requests wait for an answer, warm-ups left out.
    int waiting();

    /// Every request so far, warm-ups apart.
    QList<HttpRequest> requests;
    QList<HttpRequest> warmUps;

private:
    QObject m_loop; // whose events tell of a stop
    std::deque<Result> m_prepared;
    std::deque<std::shared_ptr<Completion<Result>>> m_waiting;
};
