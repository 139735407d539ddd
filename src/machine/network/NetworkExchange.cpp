#include "machine/network/NetworkExchange.h"

#include "machine/network/TransferLoop.h"
#include "machine/network/TransportFailure.h"

#include <algorithm>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

NetworkExchange::NetworkExchange(std::shared_ptr<TransferLoop> loop, Renewal renew,
                                 const HttpRequest &request, const QByteArray &userAgent, const Trust &trust,
                                 const std::optional<DesktopProxy::Route> &route)
    : m_loop(std::move(loop)),
      m_renew(std::move(renew)),
      m_host(request.url.host()),
      m_largestBody(request.largestAnswer),
      m_transfer(curl_easy_init())
{
    describe(request, userAgent, trust);
    if (route) {
        curl_easy_setopt(m_transfer.get(), CURLOPT_PROXY, route->proxy.constData());
        curl_easy_setopt(m_transfer.get(), CURLOPT_NOPROXY, route->exceptions.constData());
    }
    for (QTimer *timer : {&m_silence, &m_whole}) {
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, [this] { end(TransportFailure::timedOut(m_host)); });
    }
    m_silence.start(request.timeout);
    m_whole.start(request.resourceTimeout);
    begin();
}

NetworkExchange::~NetworkExchange()
{
    m_loop->remove(m_transfer.get());
}

void NetworkExchange::begin()
{
    m_loop->add(m_transfer.get(), [this](CURLcode code) { conclude(code); });
}

void NetworkExchange::beginAgain()
{
    if (m_result) // ended meanwhile
        return;
    m_loop = m_renew(m_loop);
    begin();
}

void NetworkExchange::describe(const HttpRequest &request, const QByteArray &userAgent, const Trust &trust)
{
    CURL *transfer = m_transfer.get();
    const QByteArray url = request.url.toEncoded(QUrl::RemoveFragment | QUrl::RemoveUserInfo);
    curl_easy_setopt(transfer, CURLOPT_URL, url.constData());
    curl_easy_setopt(transfer, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(transfer, CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(transfer, CURLOPT_USERAGENT, userAgent.constData());
    curl_easy_setopt(transfer, CURLOPT_ACCEPT_ENCODING, ""); // all that libcurl can unpack
    curl_easy_setopt(transfer, CURLOPT_CAINFO, trust.file.isEmpty() ? nullptr : trust.file.constData());
    curl_easy_setopt(transfer, CURLOPT_CAPATH, trust.folder.isEmpty() ? nullptr : trust.folder.constData());
    curl_easy_setopt(transfer, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    curl_easy_setopt(transfer, CURLOPT_ERRORBUFFER, m_detail.data());
    curl_easy_setopt(transfer, CURLOPT_QUICK_EXIT, 1L); // a name look-up is left alone, not waited for
    curl_easy_setopt(transfer, CURLOPT_SOCKOPTFUNCTION, &NetworkExchange::socketMade);
    curl_easy_setopt(transfer, CURLOPT_HEADERFUNCTION, &NetworkExchange::headerArrived);
    curl_easy_setopt(transfer, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(transfer, CURLOPT_WRITEFUNCTION, &NetworkExchange::bodyArrived);
    curl_easy_setopt(transfer, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(transfer, CURLOPT_XFERINFOFUNCTION, &NetworkExchange::progressed);
    curl_easy_setopt(transfer, CURLOPT_XFERINFODATA, this);
    curl_easy_setopt(transfer, CURLOPT_NOPROGRESS, 0L);
    describeBody(request);

    // libcurl's own additions first; a header that is given replaces them.
    for (const char *unwanted : {"Accept:", "Expect:", "Content-Type:"})
        addHeader(unwanted);
    for (const auto &[name, value] : request.headers)
        addHeader(value.isEmpty() ? name + ';' : name + ": " + value);
    curl_easy_setopt(transfer, CURLOPT_HTTPHEADER, m_headers.get());
}

void NetworkExchange::describeBody(const HttpRequest &request)
{
    CURL *transfer = m_transfer.get();
    if (request.method == "HEAD") {
        curl_easy_setopt(transfer, CURLOPT_NOBODY, 1L);
    } else if (request.method != "GET" || !request.body.isEmpty()) {
        curl_easy_setopt(transfer, CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(request.body.size()));
        curl_easy_setopt(transfer, CURLOPT_POSTFIELDS, request.body.constData()); // not copied
        curl_easy_setopt(transfer, CURLOPT_CUSTOMREQUEST, request.method.constData());
    }
}

void NetworkExchange::addHeader(const QByteArray &line)
{
    if (curl_slist *longer = curl_slist_append(m_headers.get(), line.constData())) {
        (void)m_headers.release(); // now the same list, or the one element that began it
        m_headers.reset(longer);
    }
}

size_t NetworkExchange::headerArrived(const char *line, size_t, size_t size, void *self)
{
    auto &exchange = *static_cast<NetworkExchange *>(self);
    exchange.m_headSize += qsizetype(size);
    if (exchange.m_headSize > largestHead) {
        exchange.m_isTooLarge = true;
        return 0; // libcurl ends the transfer with CURLE_WRITE_ERROR
    }
    exchange.takeHeader(QByteArray(line, qsizetype(size)));
    return size;
}

void NetworkExchange::takeHeader(const QByteArray &line)
{
    m_silence.start();
    if (line.startsWith("HTTP/")) {
        m_response.headers.clear(); // those before were of an interim answer
        m_headComplete = false;
    } else if (line.trimmed().isEmpty()) {
        m_headComplete = true;
    }
    const qsizetype colon = line.indexOf(':');
    if (colon > 0)
        m_response.headers.emplaceBack(line.first(colon).trimmed(), line.sliced(colon + 1).trimmed());
}

size_t NetworkExchange::bodyArrived(const char *bytes, size_t, size_t size, void *self)
{
    auto &exchange = *static_cast<NetworkExchange *>(self);
    QByteArray &body = exchange.m_response.body;
    if (qsizetype(size) > exchange.m_largestBody - body.size()) {
        exchange.m_isTooLarge = true;
        return 0; // as above
    }
    body.append(bytes, qsizetype(size));
    return size;
}

/// A connection whose other end is out of reach is given up after about ten seconds, be it in the middle of
/// an upload or while its answer is awaited. The times are those of tcp(7).
int NetworkExchange::socketMade(void *, curl_socket_t socket, curlsocktype)
{
    const auto set = [socket](int level, int option, int value) {
        setsockopt(socket, level, option, &value, sizeof value);
    };
    set(IPPROTO_TCP, TCP_USER_TIMEOUT, 10'000);
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
    set(IPPROTO_TCP, TCP_KEEPIDLE, 5);
    set(IPPROTO_TCP, TCP_KEEPINTVL, 5);
    return CURL_SOCKOPT_OK;
}

/// Whether the connection led nowhere: the other end did not so much as refuse, and nothing came of it.
bool NetworkExchange::isUnheard(CURLcode code) const
{
    return m_headSize == 0 && TransportFailure::isOutOfReach(code, m_detail.data());
}

int NetworkExchange::progressed(void *self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent)
{
    auto &exchange = *static_cast<NetworkExchange *>(self);
    if (const curl_off_t progress = received + sent; progress != exchange.m_progress) {
        exchange.m_progress = progress;
        exchange.m_silence.start();
    }
    return 0;
}

void NetworkExchange::conclude(CURLcode code)
{
    if (isUnheard(code) && !m_isSecondAttempt) {
        m_isSecondAttempt = true;
        QMetaObject::invokeMethod(
            this, [this] { beginAgain(); }, Qt::QueuedConnection); // the loop is still at work
        return;
    }
    long status = 0;
    curl_easy_getinfo(m_transfer.get(), CURLINFO_RESPONSE_CODE, &status);
    m_response.status = int(status);
    if (m_isTooLarge && m_headComplete && !m_response.isSuccess())
        m_response.body.clear();
    else if (code != CURLE_OK)
        return finish(std::unexpected(TransportFailure::of(code, m_transfer.get(), m_host, m_detail.data())));
    if (!m_headComplete) // libcurl is content with a connection that is closed there
        return finish(std::unexpected(TransportFailure::cutShort(m_host)));
    finish(std::move(m_response));
}

void NetworkExchange::end(TransportError error)
{
    finish(std::unexpected(std::move(error)));
}

void NetworkExchange::endNow(TransportError error)
{
    end(std::move(error));
    resume();
}

void NetworkExchange::finish(Result result)
{
    if (m_result)
        return;
    m_result = std::move(result);
    m_silence.stop();
    m_whole.stop();
    QMetaObject::invokeMethod(
        this, [this] { resume(); }, Qt::QueuedConnection);
}

void NetworkExchange::resume()
{
    if (m_waiter)
        std::exchange(m_waiter, {}).resume(); // this object is gone when it returns
}
