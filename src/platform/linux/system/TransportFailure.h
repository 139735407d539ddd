#pragma once

#include "platform/HttpTransport.h"

#include <curl/curl.h>

/// What the user is told when an exchange brings no answer.
namespace TransportFailure {

TransportError timedOut(const QString &host);
TransportError cutShort(const QString &host);
TransportError cancelled();
TransportError malformed();

/// Why a transfer of libcurl failed; `detail` is libcurl's own account of it.
TransportError of(CURLcode code, CURL *transfer, const QString &host, const QByteArray &detail);

} // namespace TransportFailure
