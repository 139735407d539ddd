#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <expected>
#include <optional>
#include <stop_token>
#include <utility>

struct HttpRequest
{
    QByteArray method = "GET";
    QUrl url;
    QList<std::pair<QByteArray, QByteArray>> headers; ///< sent as they stand; nothing else of note is added
    QByteArray body;
    /// How long the connection may be silent.
    std::chrono::milliseconds timeout = std::chrono::seconds(60);
    /// How long the whole exchange may take.
    std::chrono::milliseconds resourceTimeout = std::chrono::seconds(180);
    /// How many bytes the answer's body may have once it is unpacked.
    qsizetype largestAnswer = qsizetype{256} * 1024;
};

struct HttpResponse
{
    int status = 0; ///< 0 when the answer is not HTTP
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;

    bool isSuccess() const { return status >= 200 && status <= 299; }

    /// The first header of that name, in any letter case.
    std::optional<QString> header(QByteArrayView name) const
    {
        for (const auto &[key, value] : headers) {
            if (key.compare(name, Qt::CaseInsensitive) == 0)
                return QString::fromUtf8(value);
        }
        return std::nullopt;
    }
};

/// An exchange that brought no answer; the text is one complete sentence for the user.
struct TransportError
{
    enum class Kind { timedOut, offline, cancelled, insecure, tooLarge, other };
    Kind kind = Kind::other;
    QString message;
};

/// HTTP and HTTPS with connections kept open between requests and certificates always verified.
class HttpTransport
{
public:
    virtual ~HttpTransport() = default;

    /// Performs one exchange; redirects are not followed. Any status is an answer; a body cut short is a
    /// transport error. What is larger than the request allows is never held: a success is then a transport
    /// error, and a refusal, whose status says enough, has an empty body. A stop request ends it with
    /// `cancelled`.
    virtual QCoro::Task<std::expected<HttpResponse, TransportError>> send(HttpRequest request,
                                                                          std::stop_token stop) = 0;
};
