#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <vector>

#include <xcb/xproto.h>

/// What a selection is delivered as in one of its formats.
struct SelectionData
{
    xcb_atom_t target = XCB_ATOM_NONE; ///< the format that was asked for
    xcb_atom_t type = XCB_ATOM_NONE;   ///< the format that came; the same but for a few old names
    uint8_t format = 8;                ///< the size of a unit in bits: 8, 16 or 32
    QByteArray bytes;
};

/// Everything a selection is offered as, in its owner's order.
using SelectionContents = QList<SelectionData>;

class X11Connection;
struct WindowProperty;

/// Reads everything that the owner of a selection offers, several formats at a time.
///
/// An owner that falls silent, is slow, offers too much or dies costs a bounded time: what arrived whole by
/// then is the result.
class SelectionRead final : public QObject
{
    Q_OBJECT
public:
    SelectionRead(X11Connection &connection, xcb_atom_t selection);
    ~SelectionRead() override;
    Q_DISABLE_COPY_MOVE(SelectionRead)

    /// Begins; `finished` comes later, never before this returns.
    void start(std::chrono::milliseconds limit);
    /// The selection is about to change hands: what its owner was asked for already still arrives.
    void askNoMore();
    /// Another window owns the selection, or none, since that request of ours. In the midst of the questions
    /// this is the end, and what came may be of either owner.
    void changedHands(uint32_t request, xcb_window_t owner);
    xcb_atom_t selection() const { return m_selection; }
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
    bool m_isClosed = false; // no more may be asked
    uint32_t m_firstRequest = 0;
    uint32_t m_lastRequest = 0;
    qsizetype m_bytes = 0;
    QTimer m_limit;
};
