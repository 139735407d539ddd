#include "support/FakeTransport.h"

#include <QCoreApplication>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

QCoro::Task<FakeTransport::Result> FakeTransport::send(HttpRequest request, std::stop_token stop)
{
    // A list of models that somebody reads is waited for longer.
    if (request.method == "GET" && request.url.path().endsWith("/models"_L1) &&
        request.timeout == std::chrono::seconds(10)) {
        warmUps.append(request);
        co_return HttpResponse{200, {}, "{}"};
    }
    requests.append(request);
    if (!m_prepared.empty()) {
        const Result result = m_prepared.front();
        m_prepared.pop_front();
        co_return result;
    }
    const auto completion = std::make_shared<Completion<Result>>();
    m_waiting.push_back(completion);
    const std::function<void()> cancel = [this, completion] {
        const auto end = [completion] {
            completion->complete(std::unexpected(TransportError{TransportError::Kind::cancelled, u"Cancelled."_s}));
        };
        QMetaObject::invokeMethod(&m_loop, end, Qt::QueuedConnection); // whoever asked for it goes on first
    };
    const std::stop_callback onStop(stop, cancel);
    const Completion<Result>::Awaiter awaiter(completion.get());
    co_return co_await awaiter;
}

int FakeTransport::waiting()
{
    QCoreApplication::sendPostedEvents(&m_loop);
    return static_cast<int>(std::ranges::count_if(m_waiting, [](const auto &each) { return !each->isComplete(); }));
}

void FakeTransport::answer(const Result &result)
{
    QCoreApplication::sendPostedEvents(&m_loop);
    while (!m_waiting.empty() && m_waiting.front()->isComplete())
        m_waiting.pop_front();
    QVERIFY2(!m_waiting.empty(), "no request is waiting");
    const auto completion = m_waiting.front();
    m_waiting.pop_front();
    completion->complete(result);
}
