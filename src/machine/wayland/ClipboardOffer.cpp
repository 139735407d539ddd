#include "machine/wayland/ClipboardOffer.h"

#include "machine/wayland/PipeReader.h"

#include <wlr-data-control-unstable-v1.h>

#include <array>

#include <fcntl.h>
#include <unistd.h>

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
