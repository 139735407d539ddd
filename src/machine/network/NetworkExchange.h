#pragma once

#include "base/HttpTransport.h"
#include "machine/network/DesktopProxy.h"

#include <QObject>
#include <QTimer>

#include <array>
#include <coroutine>
#include <functional>
#include <memory>

#include <curl/curl.h>

class TransferLoop;

/// One request under way; a coroutine awaits its outcome. The waiter goes on from the event loop, so that
/// it may destroy anything, or at once when the exchange is ended by `endNow`.
class NetworkExchange final : public QObject
{
    Q_OBJECT
public:
    using Result = std::expected<HttpResponse, TransportError>;
    /// All header lines of an answer together, in bytes.
    static constexpr qsizetype largestHead = qsizetype{256} * 1024;

    /// Where the certificates of trusted authorities are; what is empty is not used.
    struct Trust
    {
        QByteArray file;
        QByteArray folder;
    };

    /// Another loop in the place of one whose connections lead nowhere.
    using Renewal = std::function<std::shared_ptr<TransferLoop>(const std::shared_ptr<TransferLoop> &dead)>;

    /// The request must outlive the exchange: its body is sent from where it is.
    NetworkExchange(std::shared_ptr<TransferLoop> loop, Renewal renew, const HttpRequest &request,
                    const QByteArray &userAgent, const Trust &trust,
                    const std::optional<DesktopProxy::Route> &route);
    ~NetworkExchange() override;

    void end(TransportError error);
    void endNow(TransportError error);

    /// What a coroutine awaits; it names the exchange and keeps nothing.
    struct Outcome
    {
        NetworkExchange &exchange;

        bool await_ready() const { return exchange.m_result.has_value(); }
        void await_suspend(std::coroutine_handle<> waiter) { exchange.m_waiter = waiter; }
        Result await_resume() { return std::move(*exchange.m_result); }
    };

private:
    struct Release
    {
        void operator()(CURL *transfer) const { curl_easy_cleanup(transfer); }
        void operator()(curl_slist *list) const { curl_slist_free_all(list); }
    };

    static size_t headerArrived(const char *line, size_t one, size_t size, void *self);
    static size_t bodyArrived(const char *bytes, size_t one, size_t size, void *self);
    static int socketMade(void *self, curl_socket_t socket, curlsocktype purpose);
    static int progressed(void *self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent);

    void describe(const HttpRequest &request, const QByteArray &userAgent, const Trust &trust);
    void describeBody(const HttpRequest &request);
    void addHeader(const QByteArray &line);
    void takeHeader(const QByteArray &line);
    bool isUnheard(CURLcode code) const;
    void begin();
    void beginAgain();
    void conclude(CURLcode code);
    void finish(Result result);
    void resume();

    std::shared_ptr<TransferLoop> m_loop;
    Renewal m_renew;
    QString m_host;
    qsizetype m_largestBody;
    std::array<char, CURL_ERROR_SIZE> m_detail{}; // what libcurl says of a failure
    std::unique_ptr<curl_slist, Release> m_headers;
    std::unique_ptr<CURL, Release> m_transfer;
    QTimer m_silence;
    QTimer m_whole;
    curl_off_t m_progress = 0; // bytes in either direction
    qsizetype m_headSize = 0;
    bool m_isSecondAttempt = false;
    bool m_headComplete = false;
    bool m_isTooLarge = false;
    HttpResponse m_response;
    std::optional<Result> m_result;
    std::coroutine_handle<> m_waiter;
};
