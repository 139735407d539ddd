#pragma once

#include "base/HttpTransport.h"
#include "machine/network/NetworkExchange.h"

#include <QSet>

class NetworkChanges;
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
/// sent once. Only where not a line of an answer came is it sent again, on a new connection and within the
/// same limits: when one that was kept from before is closed, and once when the other end is out of reach,
/// which shows after about ten seconds. A connection is not kept over a change of this computer's addresses
/// or its sleep. Requests under way when the transport is destroyed end as cancelled before its destructor
/// returns.
class NetworkTransport final : public HttpTransport
{
public:
    explicit NetworkTransport(QByteArray userAgent);
    ~NetworkTransport() override;

    QCoro::Task<std::expected<HttpResponse, TransportError>> send(HttpRequest request,
                                                                  std::stop_token stop) override;

private:
    std::shared_ptr<TransferLoop> loop();
    std::shared_ptr<TransferLoop> loopAfter(const std::shared_ptr<TransferLoop> &dead);

    QByteArray m_userAgent;
    NetworkExchange::Trust m_trust;
    std::unique_ptr<NetworkChanges> m_changes; // made for the first request, as what follows
    std::unique_ptr<DesktopProxy> m_proxy;
    std::shared_ptr<TransferLoop> m_loop; // an earlier one lives as long as its exchanges
    QSet<NetworkExchange *> m_exchanges;  // under way
};
