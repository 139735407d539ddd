#include "machine/network/TransferLoop.h"

#include <algorithm>

void TransferLoop::DeleteLater::operator()(QSocketNotifier *notifier) const
{
    notifier->setEnabled(false); // libcurl may be closing the socket, and we may be in its signal
    notifier->deleteLater();
}

TransferLoop::TransferLoop()
{
    static const CURLcode initialized = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (initialized != CURLE_OK)
        qFatal("libcurl cannot be used: %s", curl_easy_strerror(initialized));
    m_multi = curl_multi_init();
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETFUNCTION, &TransferLoop::socketChanged);
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERFUNCTION, &TransferLoop::timerChanged);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERDATA, this);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
}

TransferLoop::~TransferLoop()
{
    while (!m_transfers.empty())
        remove(m_transfers.begin()->first);
    curl_multi_cleanup(m_multi);
}

void TransferLoop::add(CURL *transfer, Done done)
{
    m_transfers.emplace(transfer, std::move(done));
    curl_multi_add_handle(m_multi, transfer);
}

void TransferLoop::remove(CURL *transfer)
{
    if (m_transfers.erase(transfer) > 0)
        curl_multi_remove_handle(m_multi, transfer);
}

int TransferLoop::socketChanged(CURL *, curl_socket_t socket, int what, void *self, void *)
{
    static_cast<TransferLoop *>(self)->watch(socket, what);
    return 0;
}

int TransferLoop::timerChanged(CURLM *, long milliseconds, void *self)
{
    QTimer &timer = static_cast<TransferLoop *>(self)->m_timer;
    if (milliseconds < 0)
        timer.stop();
    else
        timer.start(int(std::min<long>(milliseconds, 24L * 60 * 60 * 1000)));
    return 0;
}

void TransferLoop::watch(curl_socket_t socket, int what)
{
    if (what == CURL_POLL_REMOVE) {
        m_watches.erase(socket);
        return;
    }
    Watch &watch = m_watches[socket];
    if (!watch.read) {
        watch.read.reset(new QSocketNotifier(socket, QSocketNotifier::Read));
        watch.write.reset(new QSocketNotifier(socket, QSocketNotifier::Write));
        connect(watch.read.get(), &QSocketNotifier::activated, this,
                [this, socket] { act(socket, CURL_CSELECT_IN); });
        connect(watch.write.get(), &QSocketNotifier::activated, this,
                [this, socket] { act(socket, CURL_CSELECT_OUT); });
    }
    watch.read->setEnabled(what & CURL_POLL_IN);
    watch.write->setEnabled(what & CURL_POLL_OUT);
}

void TransferLoop::act(curl_socket_t socket, int events)
{
    int running = 0;
    curl_multi_socket_action(m_multi, socket, events, &running);
    int left = 0;
    while (const CURLMsg *message = curl_multi_info_read(m_multi, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        const CURLcode code = message->data.result; // the message goes with the transfer
        const auto it = m_transfers.find(message->easy_handle);
        if (it == m_transfers.end())
            continue;
        const Done done = std::move(it->second);
        remove(it->first);
        done(code);
    }
}
