#include "machine/network/TransportFailure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <openssl/x509_vfy.h>

using namespace Qt::StringLiterals;

namespace {

using Kind = TransportError::Kind;

long info(CURL *transfer, CURLINFO what)
{
    long value = 0;
    curl_easy_getinfo(transfer, what, &value);
    return value;
}

QString objection(long verification)
{
    switch (verification) {
    case X509_V_OK:
    case X509_V_ERR_UNSPECIFIED: // what libcurl leaves when the chain is good and the name is not
        return TransportFailure::tr("its certificate is for another address");
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return TransportFailure::tr("its certificate has expired");
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return TransportFailure::tr("its certificate is not valid yet; check this computer's date");
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
        return TransportFailure::tr("its certificate is self-signed");
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_CERT_UNTRUSTED:
        return TransportFailure::tr(
            "its certificate was issued by an authority that this computer does not trust");
    case X509_V_ERR_CERT_REVOKED:
        return TransportFailure::tr("its certificate has been revoked");
    default:
        return TransportFailure::tr("its certificate is not acceptable");
    }
}

TransportError unreachable(const QString &host)
{
    return {Kind::offline,
            TransportFailure::tr("%1 cannot be reached. Check the internet connection.").arg(host)};
}

TransportError proxyUnreachable(const QString &host)
{
    return {Kind::offline, TransportFailure::tr("The proxy for %1 cannot be reached.").arg(host)};
}

/// The connection was closed early, by the host or by the proxy that was to lead there.
TransportError closed(CURL *transfer, const QString &host)
{
    const long proxyStatus = info(transfer, CURLINFO_HTTP_CONNECTCODE);
    if (proxyStatus == 407)
        return {Kind::other, TransportFailure::tr("The proxy for %1 wants a name and a password.").arg(host)};
    if (proxyStatus >= 300)
        return {Kind::offline, TransportFailure::tr("The proxy did not connect to %1.").arg(host)};
    return TransportFailure::cutShort(host);
}

} // namespace

TransportError TransportFailure::timedOut(const QString &host)
{
    return {Kind::timedOut, tr("%1 did not answer in time.").arg(host)};
}

TransportError TransportFailure::cutShort(const QString &host)
{
    return {Kind::other, tr("%1 closed the connection before its whole answer had arrived.").arg(host)};
}

TransportError TransportFailure::cancelled()
{
    return {Kind::cancelled, tr("The request was cancelled.")};
}

TransportError TransportFailure::malformed()
{
    return {Kind::other, tr("The request is not one that can be sent to a web address.")};
}

bool TransportFailure::isOutOfReach(CURLcode code, const QByteArray &detail)
{
    if (code != CURLE_SEND_ERROR && code != CURLE_RECV_ERROR && code != CURLE_SSL_CONNECT_ERROR)
        return false;
    // The connection was closed since, which has its own number of an error; the text of the first stays.
    return std::ranges::any_of(std::array{ETIMEDOUT, EHOSTUNREACH, ENETUNREACH, ENETDOWN},
                               [&](int reason) { return detail.contains(std::strerror(reason)); });
}

TransportError TransportFailure::of(CURLcode code, CURL *transfer, const QString &host,
                                    const QByteArray &detail)
{
    if (isOutOfReach(code, detail))
        return unreachable(host);
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return {Kind::offline, tr("%1 cannot be found. Check the internet connection.").arg(host)};
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_PROXY:
        return proxyUnreachable(host);
    case CURLE_COULDNT_CONNECT:
        if (!detail.isEmpty() && !detail.contains(host.toUtf8())) // it was not the host that was tried
            return proxyUnreachable(host);
        if (info(transfer, CURLINFO_OS_ERRNO) == ECONNREFUSED)
            return {Kind::offline, TransportFailure::tr("%1 refused the connection.").arg(host)};
        return unreachable(host);
    case CURLE_OPERATION_TIMEDOUT:
        return timedOut(host);
    case CURLE_PEER_FAILED_VERIFICATION:
        return {
            Kind::insecure,
            tr("%1 cannot be trusted: %2.").arg(host, objection(info(transfer, CURLINFO_SSL_VERIFYRESULT)))};
    case CURLE_SSL_CACERT_BADFILE:
        return {
            Kind::insecure,
            tr("%1 cannot be trusted: the certificates named by SSL_CERT_FILE cannot be read.").arg(host)};
    case CURLE_SSL_CONNECT_ERROR:
        return {Kind::insecure, tr("%1 did not set up a secure connection.").arg(host)};
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return closed(transfer, host);
    case CURLE_WRITE_ERROR: // more than the exchange takes
        return {Kind::tooLarge, TransportFailure::tr("The answer could not be read.")};
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_BAD_CONTENT_ENCODING:
        return {Kind::other, tr("%1 did not answer as a web server does.").arg(host)};
    default:
        return {
            Kind::other,
            tr("The connection to %1 failed: %2.").arg(host, QString::fromUtf8(curl_easy_strerror(code)))};
    }
}
