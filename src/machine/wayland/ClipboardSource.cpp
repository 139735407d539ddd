#include "machine/wayland/ClipboardSource.h"

#include "machine/wayland/PipeWriter.h"

#include <wlr-data-control-unstable-v1.h>

#include <algorithm>
#include <utility>

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
