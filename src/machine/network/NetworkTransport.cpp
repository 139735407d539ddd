#include "machine/network/NetworkTransport.h"

#include "machine/network/DesktopProxy.h"
#include "machine/network/NetworkChanges.h"
#include "machine/network/TransferLoop.h"
#include "machine/network/TransportFailure.h"

#include <QScopeGuard>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The folder is searched by hash for one authority at a time, which spares reading a bundle of all.
NetworkExchange::Trust trustOfEnvironment()
{
    NetworkExchange::Trust trust{qgetenv("SSL_CERT_FILE"), qgetenv("SSL_CERT_DIR")};
    if (trust.file.isEmpty() && trust.folder.isEmpty())
        trust.folder = "/etc/ssl/certs";
    return trust;
}

bool holdsControls(const QByteArray &text)
{
    return std::ranges::any_of(text, [](char c) { return (c >= 0 && c < ' ' && c != '\t') || c == 0x7f; });
}

/// Whether the request goes to a web address and no header could be taken for two.
bool isSendable(const HttpRequest &request)
{
    const QUrl &url = request.url;
    return url.isValid() && (url.scheme() == u"https" || url.scheme() == u"http") && !url.host().isEmpty() &&
           !holdsControls(request.method) && std::ranges::none_of(request.headers, [](const auto &header) {
               return header.first.isEmpty() || holdsControls(header.first) || holdsControls(header.second);
           });
}

} // namespace

NetworkTransport::NetworkTransport(QByteArray userAgent)
    : m_userAgent(std::move(userAgent)),
      m_trust(trustOfEnvironment())
{
}

NetworkTransport::~NetworkTransport()
{
    while (!m_exchanges.isEmpty()) // also those that a waiter starts on being cancelled
        (*m_exchanges.begin())->endNow(TransportFailure::cancelled());
}

std::shared_ptr<TransferLoop> NetworkTransport::loop()
{
    if (!m_changes) {
        m_changes = std::make_unique<NetworkChanges>();
        m_proxy = std::make_unique<DesktopProxy>();
    }
    if (m_changes->happened() || !m_loop)
        m_loop = std::make_shared<TransferLoop>();
    return m_loop;
}

std::shared_ptr<TransferLoop> NetworkTransport::loopAfter(const std::shared_ptr<TransferLoop> &dead)
{
    if (m_loop == dead)
        m_loop.reset();
    return loop();
}

QCoro::Task<std::expected<HttpResponse, TransportError>> NetworkTransport::send(HttpRequest request,
                                                                                std::stop_token stop)
{
    if (stop.stop_requested())
        co_return std::unexpected(TransportFailure::cancelled());
    if (!isSendable(request))
        co_return std::unexpected(TransportFailure::malformed());
    const auto renew = [this](const std::shared_ptr<TransferLoop> &dead) { return loopAfter(dead); };
    auto shared = loop(); // which makes what the route comes from
    const auto route = m_proxy->route(request.url);
    NetworkExchange exchange(std::move(shared), renew, request, m_userAgent, m_trust, route);
    m_exchanges.insert(&exchange);
    const auto leave = qScopeGuard([this, &exchange] { m_exchanges.remove(&exchange); });
    const std::stop_callback stopping(stop, [&exchange] { // on whichever thread asks for it
        QMetaObject::invokeMethod(&exchange, [&exchange] { exchange.end(TransportFailure::cancelled()); });
    });
    NetworkExchange::Outcome outcome{exchange};
    co_return co_await outcome;
}
