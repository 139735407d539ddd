#include "machine/wayland/ClipboardTransfer.h"

#include <QTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

#include <fcntl.h>
#include <unistd.h>
#include <wlr-data-control-unstable-v1.h>

using namespace std::chrono_literals;

namespace {

constexpr auto timeLimit = 10s;

} // namespace

PipeWriter::PipeWriter(int descriptor, QByteArray bytes, QObject *parent)
    : QObject(parent),
      m_descriptor(descriptor),
      m_notifier(descriptor, QSocketNotifier::Write),
      m_bytes(std::move(bytes))
{
    ::fcntl(m_descriptor, F_SETFL, O_NONBLOCK);
    connect(&m_notifier, &QSocketNotifier::activated, this, &PipeWriter::write);
    QTimer::singleShot(timeLimit, this, &QObject::deleteLater);
}

PipeWriter::~PipeWriter()
{
    m_notifier.setEnabled(false);
    ::close(m_descriptor);
}

void PipeWriter::write()
{
    const ssize_t count = ::write(m_descriptor, m_bytes.constData() + m_written,
                                  static_cast<size_t>(m_bytes.size() - m_written));
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count > 0)
        m_written += count;
    if (count >= 0 && m_written < m_bytes.size())
        return;
    m_notifier.setEnabled(false);
    deleteLater();
}

ClipboardSource::ClipboardSource(zwlr_data_control_manager_v1 *clipboards, PasteboardItem contents,
                                 QObject *parent)
    : QObject(parent),
      m_source(zwlr_data_control_manager_v1_create_data_source(clipboards)),
      m_contents(std::move(contents))
{
    static constexpr zwlr_data_control_source_v1_listener listener{
        .send =
            [](void *self, zwlr_data_control_source_v1 *, const char *type, int32_t descriptor) {
                static_cast<ClipboardSource *>(self)->send(QString::fromUtf8(type), descriptor);
            },
        .cancelled =
            [](void *self, zwlr_data_control_source_v1 *) {
                Q_EMIT static_cast<ClipboardSource *>(self)->cancelled();
            }};
    zwlr_data_control_source_v1_add_listener(m_source, &listener, this);
    for (const PasteboardData &data : std::as_const(m_contents))
        zwlr_data_control_source_v1_offer(m_source, data.type.toUtf8().constData());
}

ClipboardSource::~ClipboardSource()
{
    zwlr_data_control_source_v1_destroy(m_source);
}

void ClipboardSource::send(const QString &type, int descriptor)
{
    const auto wanted = std::ranges::find(std::as_const(m_contents), type, &PasteboardData::type);
    // It deletes itself: what was asked for is still delivered when the clipboard changes meanwhile.
    new PipeWriter(descriptor, wanted == m_contents.cend() ? QByteArray() : wanted->bytes, parent());
    Q_EMIT asked(type);
}

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
