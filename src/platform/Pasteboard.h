#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QList>
#include <QString>

/// One piece of data on the clipboard, in one of its formats.
struct PasteboardData
{
    QString type; ///< the format's name, such as "text/html"
    QByteArray bytes;
    bool operator==(const PasteboardData &) const = default;
};

/// Everything one thing on the clipboard was offered as.
using PasteboardItem = QList<PasteboardData>;

/// The general clipboard.
class Pasteboard
{
public:
    virtual ~Pasteboard() = default;

    /// Copies the current items with every format that could be read. A format that its owner does not
    /// deliver in a bounded time, or that is beyond a bounded size, is left out.
    virtual QCoro::Task<QList<PasteboardItem>> items() = 0;

    /// Increases with every change of the clipboard by anyone.
    virtual qint64 changeCount() const = 0;

    /// Whether what is put there now can be pasted in other programs. Where it cannot, what is put there
    /// waits until it can.
    virtual bool isReachable() const = 0;

    /// Replaces the contents with plain text.
    virtual void setString(const QString &text) = 0;

    /// Replaces the contents with the items; none clears it.
    virtual void setItems(const QList<PasteboardItem> &items) = 0;
};
