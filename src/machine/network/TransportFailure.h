#pragma once

#include "base/HttpTransport.h"

#include <QCoreApplication>

#include <curl/curl.h>

/// What the user is told when an exchange brings no answer.
struct TransportFailure
{
    static TransportError timedOut(const QString &host);
    static TransportError cutShort(const QString &host);
    static TransportError cancelled();
    static TransportError malformed();

    /// Whether a transfer failed since the other end of its connection is out of reach, as where a network is
    /// gone.
    static bool isOutOfReach(CURLcode code, const QByteArray &detail);

    /// Why a transfer of libcurl failed; `detail` is libcurl's own account of it.
    static TransportError of(CURLcode code, CURL *transfer, const QString &host, const QByteArray &detail);

    Q_DECLARE_TR_FUNCTIONS(TransportFailure)
};
