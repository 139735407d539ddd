#pragma once

#include "base/Pasteboard.h"

#include <QObject>

/// The clipboard of a Wayland desktop that gives it only to the program whose window has the keyboard.
///
/// What is put there while another program has the keyboard waits until a window of ours gets it. A
/// compositor may ignore a program that the user has not touched since somebody else copied: the next key or
/// click in our window puts it there once more. Text is marked as secret, by which clipboard managers do not
/// keep it. Needs a graphical application object.
class WindowPasteboard final : public QObject, public Pasteboard
{
    Q_OBJECT
public:
    WindowPasteboard();

    bool isReachable() const override;
    QCoro::Task<QList<PasteboardItem>> items(std::chrono::milliseconds limit) override;
    qint64 changeCount() const override { return m_changeCount; }
    bool isOurs() const override;
    qint64 readCount() const override { return m_readCount; }
    void setItems(const QList<PasteboardItem> &items) override;

protected:
    void setPlainText(const QString &text) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void noteChange();
    void followFocus();
    void put(PasteboardItem contents);
    void deliver();
    void deliverAgain();

    PasteboardItem m_waiting;
    bool m_isDelivered = false; // perhaps, see above
    bool m_isDelivering = false;
    bool m_isInHand = false; // a key or click of the user's in our window is being handled
    qint64 m_changeCount = 0;
    qint64 m_readCount = 0;
};
