#pragma once

#include "platform/linux/x11/SelectionData.h"

#include <QObject>
#include <QTimer>

#include <vector>

class X11Connection;
struct WindowProperty;

/// Reads everything that the owner of a selection offers, several formats at a time.
///
/// An owner that falls silent, is slow, offers too much or dies ends the reading: what arrived whole until
/// then is the result.
class SelectionRead final : public QObject
{
    Q_OBJECT
public:
    struct Limits
    {
        std::chrono::milliseconds silence{300};
        std::chrono::milliseconds total{1000};
        qsizetype bytes = 64 * 1024 * 1024;
    };

    SelectionRead(X11Connection &connection, xcb_atom_t selection);
    ~SelectionRead() override;
    Q_DISABLE_COPY_MOVE(SelectionRead)

    /// Begins; `finished` comes later, never before this returns.
    void start();
    SelectionContents contents() const;

Q_SIGNALS:
    void finished();

private:
    enum class Progress { waiting, asked, arriving, whole, missing };
    struct Format
    {
        SelectionData data;
        Progress progress = Progress::waiting;
    };

    void handle(const xcb_generic_event_t &event);
    void answered(const xcb_selection_notify_event_t &notify);
    void listArrived(bool isOffered);
    void formatArrived(Format &format);
    void pieceArrived(Format &format);
    void keep(Format &format, const WindowProperty &value);
    void ask(xcb_atom_t target);
    void proceed();
    void finish();
    Format *find(xcb_atom_t target, Progress progress);
    bool isUnderWay() const;

    X11Connection &m_connection;
    xcb_atom_t m_selection;
    xcb_atom_t m_targets;
    xcb_atom_t m_incremental;
    xcb_window_t m_window;
    std::vector<Format> m_formats; // in the owner's order
    bool m_isListed = false;
    bool m_isFinished = false;
    qsizetype m_bytes = 0;
    QTimer m_silence;
    QTimer m_total;
};
