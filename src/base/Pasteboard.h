#pragma once

#include "base/Text.h"

#include <QByteArray>
#include <QCoroTask>
#include <QList>
#include <QString>

#include <chrono>

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

    /// Copies the current items with every format that could be read within the limit. A format beyond a
    /// bounded size is left out.
    ///
    /// Nothing of what comes later is among them: when we replace the contents meanwhile, what their owner
    /// had been asked for by then still arrives; when somebody else does, all may be missing.
    virtual QCoro::Task<QList<PasteboardItem>> items(std::chrono::milliseconds limit) = 0;

    /// Increases with every change of the clipboard by anyone.
    virtual qint64 changeCount() const = 0;

    /// Whether what is there is what we put there last.
    virtual bool isOurs() const = 0;

    /// Increases whenever somebody takes what we put there.
    virtual qint64 readCount() const = 0;

    /// Whether what is put there now can be pasted in other programs. Where it cannot, what is put there
    /// waits until it can.
    virtual bool isReachable() const = 0;

    /// Replaces the contents with plain text. Control characters other than line feeds and tabs never get
    /// there: pasted into a terminal they would be keys.
    void setString(const QString &text) { setPlainText(Text::withoutControls(text)); }

    /// Replaces the contents with the items; none clears it.
    virtual void setItems(const QList<PasteboardItem> &items) = 0;

protected:
    virtual void setPlainText(const QString &text) = 0;
};
