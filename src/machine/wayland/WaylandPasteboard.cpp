#include "machine/wayland/WaylandPasteboard.h"

#include "machine/wayland/ClipboardTransfer.h"

#include <QCoroSignal>
#include <QPointer>
#include <QTimer>

#include <wlr-data-control-unstable-v1.h>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString secretHint = u"x-kde-passwordManagerHint"_s;

// An owner that offers more repeats itself in formats that nobody wants.
constexpr qsizetype formatLimit = 64;
constexpr qsizetype sizeLimit = 64 * 1024 * 1024; // all formats together

} // namespace

WaylandPasteboard::WaylandPasteboard() : m_isLost(!m_connection.clipboards() || !m_connection.seat())
{
    if (m_isLost)
        return;
    m_device = zwlr_data_control_manager_v1_get_data_device(m_connection.clipboards(), m_connection.seat());
    listen();
    m_connection.flush();
}

auto WaylandPasteboard::inThread() -> std::unique_ptr<Thread>
{
    if (!WaylandConnection::answers())
        return nullptr;
    auto clipboard = std::make_unique<Thread>();
    return clipboard->isReachable() ? std::move(clipboard) : nullptr;
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
        .finished = [](void *self, Device *) { static_cast<WaylandPasteboard *>(self)->m_isLost = true; },
        .primary_selection = [](void *self, Device *,
                                Offer *) { static_cast<WaylandPasteboard *>(self)->m_announced.reset(); }};
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

// All at once, from the one who offered them: what was asked for comes also when the clipboard changes.
QCoro::Task<QList<PasteboardItem>> WaylandPasteboard::items(std::chrono::milliseconds limit)
{
    PasteboardItem item;
    if (m_source || m_isLost) {
        item = m_ours;
    } else if (m_offer) {
        const auto room = std::make_shared<qsizetype>(sizeLimit);
        QTimer timer;
        timer.setSingleShot(true);
        timer.start(limit);
        const QStringList types = m_offer->types().first(std::min(formatLimit, m_offer->types().size()));
        std::vector<std::pair<QString, std::unique_ptr<PipeReader>>> readers;
        for (const QString &type : types) {
            if (auto reader = m_offer->read(type, room))
                readers.emplace_back(type, std::move(reader));
        }
        m_connection.flush();
        for (const auto &[type, reader] : readers) {
            if (!timer.isActive())
                break;
            connect(&timer, &QTimer::timeout, reader.get(), &PipeReader::finished);
            if (!reader->isDone())
                co_await qCoro(reader.get(), &PipeReader::finished);
        }
        for (const auto &[type, reader] : readers) {
            if (const QByteArray bytes = reader->bytes(); !bytes.isEmpty())
                item.append({type, bytes});
        }
    }
    QList<PasteboardItem> result;
    if (!item.isEmpty())
        result.append(item);
    co_return result;
}

void WaylandPasteboard::setPlainText(const QString &text)
{
    PasteboardItem contents;
    for (const QString &type : {u"text/plain;charset=utf-8"_s, u"text/plain"_s, u"UTF8_STRING"_s, u"TEXT"_s})
        contents.append({type, text.toUtf8()});
    contents.append({u"STRING"_s, text.toLatin1()});
    contents.append({secretHint, "secret"});
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

void WaylandPasteboard::lendToPrimary()
{
    constexpr uint32_t known = ZWLR_DATA_CONTROL_DEVICE_V1_SET_PRIMARY_SELECTION_SINCE_VERSION;
    if (!m_source || m_isLost || zwlr_data_control_device_v1_get_version(m_device) < known)
        return;
    m_lent = std::make_unique<ClipboardSource>(m_connection.clipboards(), m_ours, this);
    connect(m_lent.get(), &ClipboardSource::asked, this, [this] { ++m_readCount; });
    connect(m_lent.get(), &ClipboardSource::cancelled, this, [this, gone = m_lent.get()] {
        if (gone == m_lent.get())
            m_lent.release()->deleteLater(); // it is the one that is calling
    });
    zwlr_data_control_device_v1_set_primary_selection(m_device, m_lent->id());
    m_connection.flush();
}

void WaylandPasteboard::replace(PasteboardItem contents)
{
    ++m_changeCount;
    if (std::exchange(m_lent, nullptr))
        zwlr_data_control_device_v1_set_primary_selection(m_device, nullptr);
    m_ours = contents;
    m_isOurs = !contents.isEmpty();
    if (m_isLost) {
        m_source.reset();
        return;
    }
    std::unique_ptr<ClipboardSource> source;
    if (!contents.isEmpty()) {
        source = std::make_unique<ClipboardSource>(m_connection.clipboards(), std::move(contents), this);
        connect(source.get(), &ClipboardSource::asked, this, [this](const QString &type) {
            if (type != secretHint)
                ++m_readCount;
        });
        connect(source.get(), &ClipboardSource::cancelled, this, [this, gone = source.get()] {
            if (gone != m_source.get())
                return;
            m_source.release()->deleteLater(); // it is the one that is calling
            m_isOurs = false;
            ++m_changeCount;
        });
    }
    zwlr_data_control_device_v1_set_selection(m_device, source ? source->id() : nullptr);
    m_source = std::move(source);
    m_connection.flush();
}
