#pragma once

#include "platform/HttpTransport.h"
#include "platform/linux/system/NetworkExchange.h"

#include <QSet>

class TransferLoop;

/// HTTP/1.1 through libcurl, which is set up for the first request. Used on the main thread.
///
/// HTTP/1.1 and not 2: a recording is one large upload, which a server's small HTTP/2 window slows down,
/// and a connection that died unseen costs one request instead of all. Proxies come from the variables
/// that command-line programs share (http_proxy, https_proxy, all_proxy, no_proxy), else from the desktop's
/// settings. Where SSL_CERT_FILE or SSL_CERT_DIR is set, the certificates there are trusted instead of the
/// system's; the folder is one with hashed names. Nothing is stored: no cookies, no cache.
///
/// Beside the given headers a request has Host, Content-Length, Accept-Encoding and User-Agent. It is
/// sent once; only on a connection kept from before, closed without a byte of an answer, is it sent
/// again on a new one. An answer of more than 64 MB is an error. Requests under way when the transport
/// is destroyed end as cancelled before its destructor returns.
class NetworkTransport final : public HttpTransport
{
public:
    explicit NetworkTransport(QByteArray userAgent);
    ~NetworkTransport() override;

    QCoro::Task<std::expected<HttpResponse, TransportError>> send(HttpRequest request,
                                                                  std::stop_token stop) override;

private:
    QByteArray m_userAgent;
    NetworkExchange::Trust m_trust;
    std::unique_ptr<TransferLoop> m_loop;
    std::unique_ptr<DesktopProxy> m_proxy;
    QSet<NetworkExchange *> m_exchanges; // under way
};
