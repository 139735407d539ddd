#include "machine/wayland/ClipboardOffer.h"

#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>
#include <wlr-data-control-unstable-v1.h>

PipeReader::PipeReader(int descriptor, std::shared_ptr<qsizetype> room)
    : m_descriptor(descriptor),
      m_room(std::move(room)),
      m_notifier(descriptor, QSocketNotifier::Read)
{
    ::fcntl(m_descriptor, F_SETFL, O_NONBLOCK);
    connect(&m_notifier, &QSocketNotifier::activated, this, &PipeReader::read);
}

PipeReader::~PipeReader()
{
    m_notifier.setEnabled(false);
    ::close(m_descriptor);
}

void PipeReader::read()
{
    std::array<char, 65536> part{};
    const ssize_t count = ::read(m_descriptor, part.data(), part.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0)
        return give(count == 0 ? m_bytes : QByteArray());
    if (*m_room < count) {
        *m_room += m_bytes.size();
        return give({});
    }
    *m_room -= count;
    m_bytes.append(part.data(), count);
}

void PipeReader::give(const QByteArray &bytes)
{
    if (!m_notifier.isEnabled())
        return;
    m_notifier.setEnabled(false);
    m_bytes = bytes;
    Q_EMIT finished();
}

ClipboardOffer::ClipboardOffer(zwlr_data_control_offer_v1 *offer) : m_offer(offer)
{
    static constexpr zwlr_data_control_offer_v1_listener listener{
        .offer = [](void *self, zwlr_data_control_offer_v1 *, const char *type) {
            static_cast<ClipboardOffer *>(self)->m_types.append(QString::fromUtf8(type));
        }};
    zwlr_data_control_offer_v1_add_listener(m_offer, &listener, this);
}

ClipboardOffer::~ClipboardOffer()
{
    zwlr_data_control_offer_v1_destroy(m_offer);
}

std::unique_ptr<PipeReader> ClipboardOffer::read(const QString &type,
                                                 const std::shared_ptr<qsizetype> &room) const
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return nullptr;
    zwlr_data_control_offer_v1_receive(m_offer, type.toUtf8().constData(), ends[1]);
    ::close(ends[1]); // the request carries a copy
    return std::make_unique<PipeReader>(ends[0], room);
}
