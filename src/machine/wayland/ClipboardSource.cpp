#include "machine/wayland/ClipboardSource.h"

#include <QTimer>

#include <algorithm>
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
