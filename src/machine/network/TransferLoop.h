#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <functional>
#include <map>
#include <memory>

#include <curl/curl.h>

/// Runs libcurl's transfers from the main thread's event loop and keeps their connections, and what it knows
/// of hosts' addresses, for reuse.
class TransferLoop final : public QObject
{
    Q_OBJECT
public:
    using Done = std::function<void(CURLcode)>;

    TransferLoop();
    ~TransferLoop() override;

    /// Starts the transfer; `done` is called once from the event loop, unless it is removed first.
    void add(CURL *transfer, Done done);

    /// Ends the transfer without a call. Not for use within a callback of libcurl.
    void remove(CURL *transfer);

private:
    struct DeleteLater
    {
        void operator()(QSocketNotifier *notifier) const;
    };
    struct Watch
    {
        std::unique_ptr<QSocketNotifier, DeleteLater> read;
        std::unique_ptr<QSocketNotifier, DeleteLater> write;
    };

    static int socketChanged(CURL *transfer, curl_socket_t socket, int what, void *self, void *data);
    static int timerChanged(CURLM *multi, long milliseconds, void *self);

    void watch(curl_socket_t socket, int what);
    void act(curl_socket_t socket, int events);

    CURLM *m_multi;
    QTimer m_timer;
    std::map<curl_socket_t, Watch> m_watches;
    std::map<CURL *, Done> m_transfers;
};
