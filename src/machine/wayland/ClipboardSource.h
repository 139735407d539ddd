#pragma once

#include "base/Pasteboard.h"

#include <QObject>

struct zwlr_data_control_manager_v1;
struct zwlr_data_control_source_v1;

/// What we put on the clipboard, given from memory to whoever asks.
class ClipboardSource final : public QObject
{
    Q_OBJECT
public:
    /// What is asked for is delivered in the parent's time, also when the source has gone.
    ClipboardSource(zwlr_data_control_manager_v1 *clipboards, PasteboardItem contents, QObject *parent);
    ~ClipboardSource() override;
    Q_DISABLE_COPY_MOVE(ClipboardSource)

    zwlr_data_control_source_v1 *id() const { return m_source; }

Q_SIGNALS:
    void asked(const QString &type);
    /// The clipboard is somebody else's now.
    void cancelled();

private:
    void send(const QString &type, int descriptor);

    zwlr_data_control_source_v1 *m_source;
    PasteboardItem m_contents;
};
