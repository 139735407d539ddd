#include "platform/linux/system/TransportFailure.h"

#include <cerrno>

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
        return u"its certificate is for another address"_s;
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return u"its certificate has expired"_s;
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return u"its certificate is not valid yet; check this computer's date"_s;
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
        return u"its certificate is self-signed"_s;
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_CERT_UNTRUSTED:
        return u"its certificate was issued by an authority that this computer does not trust"_s;
    case X509_V_ERR_CERT_REVOKED:
        return u"its certificate has been revoked"_s;
    default:
        return u"its certificate is not acceptable"_s;
    }
}

TransportError proxyUnreachable(const QString &host)
{
    return {Kind::offline, u"The proxy for %1 cannot be reached."_s.arg(host)};
}

/// The connection was closed early, by the host or by the proxy that was to lead there.
TransportError closed(CURL *transfer, const QString &host)
{
    const long proxyStatus = info(transfer, CURLINFO_HTTP_CONNECTCODE);
    if (proxyStatus == 407)
        return {Kind::other, u"The proxy for %1 wants a name and a password."_s.arg(host)};
    if (proxyStatus >= 300)
        return {Kind::offline, u"The proxy did not connect to %1."_s.arg(host)};
    return TransportFailure::cutShort(host);
}

} // namespace

TransportError TransportFailure::timedOut(const QString &host)
{
    return {Kind::timedOut, u"%1 did not answer in time."_s.arg(host)};
}

TransportError TransportFailure::cutShort(const QString &host)
{
    return {Kind::other, u"%1 closed the connection before its whole answer had arrived."_s.arg(host)};
}

TransportError TransportFailure::cancelled()
{
    return {Kind::cancelled, u"The request was cancelled."_s};
}

TransportError TransportFailure::malformed()
{
    return {Kind::other, u"The request is not one that can be sent to a web address."_s};
}

TransportError TransportFailure::of(CURLcode code, CURL *transfer, const QString &host,
                                    const QByteArray &detail)
{
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return {Kind::offline, u"%1 cannot be found. Check the internet connection."_s.arg(host)};
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_PROXY:
        return proxyUnreachable(host);
    case CURLE_COULDNT_CONNECT:
        if (!detail.isEmpty() && !detail.contains(host.toUtf8())) // it was not the host that was tried
            return proxyUnreachable(host);
        if (info(transfer, CURLINFO_OS_ERRNO) == ECONNREFUSED)
            return {Kind::offline, u"%1 refused the connection."_s.arg(host)};
        return {Kind::offline, u"%1 cannot be reached. Check the internet connection."_s.arg(host)};
    case CURLE_OPERATION_TIMEDOUT:
        return timedOut(host);
    case CURLE_PEER_FAILED_VERIFICATION:
        return {Kind::insecure, u"%1 cannot be trusted: %2."_s.arg(
                                    host, objection(info(transfer, CURLINFO_SSL_VERIFYRESULT)))};
    case CURLE_SSL_CACERT_BADFILE:
        return {Kind::insecure,
                u"%1 cannot be trusted: the certificates named by SSL_CERT_FILE cannot be read."_s.arg(host)};
    case CURLE_SSL_CONNECT_ERROR:
        return {Kind::insecure, u"%1 did not set up a secure connection."_s.arg(host)};
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return closed(transfer, host);
    case CURLE_WRITE_ERROR:
    case CURLE_FILESIZE_EXCEEDED:
        return {Kind::other, u"The answer from %1 is too large."_s.arg(host)};
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_BAD_CONTENT_ENCODING:
        return {Kind::other, u"%1 did not answer as a web server does."_s.arg(host)};
    default:
        return {Kind::other,
                u"The connection to %1 failed: %2."_s.arg(host, QString::fromUtf8(curl_easy_strerror(code)))};
    }
}
