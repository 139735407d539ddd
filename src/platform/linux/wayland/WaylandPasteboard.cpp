#include "platform/linux/wayland/WaylandPasteboard.h"

#include "platform/linux/wayland/ClipboardOffer.h"
#include "platform/linux/wayland/ClipboardSource.h"
#include "platform/linux/wayland/PipeReader.h"
#include "platform/linux/wayland/WaylandConnection.h"

#include <QCoroSignal>
#include <QDeadlineTimer>
#include <QPointer>

#include <wlr-data-control-unstable-v1.h>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto readLimit = 1s; // all formats together

} // namespace

WaylandPasteboard::WaylandPasteboard(WaylandConnection &connection) : m_connection(connection)
{
    if (!connection.clipboards() || !connection.seat())
        return;
    m_device = zwlr_data_control_manager_v1_get_data_device(connection.clipboards(), connection.seat());
    listen();
    connection.flush();
}

WaylandPasteboard::~WaylandPasteboard()
{
    if (m_device)
        zwlr_data_control_device_v1_destroy(m_device);
}

void WaylandPasteboard::listen()
{
    using Device = zwlr_data_control_device_v1;
    using Offer = zwlr_data_control_offer_v1;
    static constexpr zwlr_data_control_device_v1_listener listener{
        .data_offer =
            [](void *self, Device *, Offer *offer) {
                static_cast<WaylandPasteboard *>(self)->m_announced = std::make_unique<ClipboardOffer>(offer);
            },
        .selection = [](void *self, Device *,
                        Offer *selected) { static_cast<WaylandPasteboard *>(self)->adopt(selected); },
        .finished = [](void *self, Device *) { static_cast<WaylandPasteboard *>(self)->m_isLost = true; }};
    zwlr_data_control_device_v1_add_listener(m_device, &listener, this);
    connect(&m_connection, &WaylandConnection::lost, this, [this] { m_isLost = true; });
}

void WaylandPasteboard::adopt(zwlr_data_control_offer_v1 *selected)
{
    m_offer.reset();
    if (m_announced && m_announced->id() == selected)
        m_offer = std::move(m_announced);
    // What we put there ourselves is told to us too.
    if (!m_source)
        ++m_changeCount;
}

QCoro::Task<QList<PasteboardItem>> WaylandPasteboard::items()
{
    PasteboardItem item;
    if (m_source || m_isLost) {
        item = m_ours;
    } else if (const std::shared_ptr<ClipboardOffer> offer = m_offer) {
        const QPointer self(this);
        const QDeadlineTimer limit(readLimit);
        for (const QString &type : offer->types()) {
            if (limit.hasExpired())
                break;
            const std::shared_ptr<PipeReader> reader = offer->read(type);
            if (!reader)
                continue;
            m_connection.flush();
            co_await qCoro(reader.get(), &PipeReader::finished);
            if (!self)
                co_return QList<PasteboardItem>{};
            if (!reader->bytes().isEmpty())
                item.append({type, reader->bytes()});
        }
    }
    QList<PasteboardItem> result;
    if (!item.isEmpty())
        result.append(item);
    co_return result;
}

void WaylandPasteboard::setString(const QString &text)
{
    PasteboardItem contents;
    for (const QString &type : {u"text/plain;charset=utf-8"_s, u"text/plain"_s, u"UTF8_STRING"_s, u"TEXT"_s})
        contents.append({type, text.toUtf8()});
    contents.append({u"STRING"_s, text.toLatin1()});
    contents.append({u"x-kde-passwordManagerHint"_s, "secret"});
    replace(std::move(contents));
}

void WaylandPasteboard::setItems(const QList<PasteboardItem> &items)
{
    PasteboardItem contents;
    for (const PasteboardItem &item : items) {
        for (const PasteboardData &data : item) {
            if (std::ranges::find(std::as_const(contents), data.type, &PasteboardData::type) ==
                contents.cend())
                contents.append(data);
        }
    }
    replace(std::move(contents));
}

void WaylandPasteboard::replace(PasteboardItem contents)
{
    ++m_changeCount;
    m_ours = contents;
    if (m_isLost) {
        m_source.reset();
        return;
    }
    std::unique_ptr<ClipboardSource> source;
    if (!contents.isEmpty()) {
        source = std::make_unique<ClipboardSource>(m_connection.clipboards(), std::move(contents));
        connect(source.get(), &ClipboardSource::cancelled, this, [this, gone = source.get()] {
            if (gone != m_source.get())
                return;
            m_source.release()->deleteLater(); // it is the one that is calling
            ++m_changeCount;
        });
    }
    zwlr_data_control_device_v1_set_selection(m_device, source ? source->id() : nullptr);
    m_source = std::move(source);
    m_connection.flush();
}
