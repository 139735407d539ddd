#include "machine/x11/WindowPasteboard.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QWindow>

#include <memory>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What we put there; counts how often it is taken.
class CountedData final : public QMimeData
{
public:
    explicit CountedData(qint64 &reads) : m_reads(reads) {}

protected:
    QVariant retrieveData(const QString &type, QMetaType wanted) const override
    {
        ++m_reads;
        return QMimeData::retrieveData(type, wanted);
    }

private:
    qint64 &m_reads;
};

} // namespace

WindowPasteboard::WindowPasteboard()
{
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, &WindowPasteboard::noteChange);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &WindowPasteboard::followFocus);
    qGuiApp->installEventFilter(this);
}

bool WindowPasteboard::isReachable() const
{
    return QGuiApplication::focusWindow() != nullptr;
}

QCoro::Task<QList<PasteboardItem>> WindowPasteboard::items(std::chrono::milliseconds)
{
    PasteboardItem item;
    if (const QMimeData *contents = isReachable() ? QGuiApplication::clipboard()->mimeData() : nullptr) {
        for (const QString &type : contents->formats()) {
            if (const QByteArray bytes = contents->data(type); !bytes.isEmpty())
                item.append({type, bytes});
        }
    }
    QList<PasteboardItem> result;
    if (!item.isEmpty())
        result.append(item);
    co_return result;
}

bool WindowPasteboard::isOurs() const
{
    return !m_waiting.isEmpty() || QGuiApplication::clipboard()->ownsClipboard();
}

void WindowPasteboard::setPlainText(const QString &text)
{
    put({{u"text/plain;charset=utf-8"_s, text.toUtf8()},
         {u"text/plain"_s, text.toUtf8()},
         {u"x-kde-passwordManagerHint"_s, "secret"}});
}

void WindowPasteboard::setItems(const QList<PasteboardItem> &items)
{
    put(std::accumulate(items.begin(), items.end(), PasteboardItem()));
}

// Only after what the key or the click does: that may be copying, and a compositor takes one copy for each.
bool WindowPasteboard::eventFilter(QObject *, QEvent *event)
{
    if (event->isInputEvent()) {
        m_isInHand = true;
        QMetaObject::invokeMethod(
            this, [this] { m_isInHand = false; }, Qt::QueuedConnection);
    }
    const bool isDone = event->type() == QEvent::KeyRelease || event->type() == QEvent::MouseButtonRelease ||
                        event->type() == QEvent::TouchEnd;
    if (isDone && !m_waiting.isEmpty())
        QMetaObject::invokeMethod(this, &WindowPasteboard::deliverAgain, Qt::QueuedConnection);
    return false;
}

void WindowPasteboard::noteChange()
{
    ++m_changeCount;
    // A field of ours was copied from meanwhile.
    if (!m_isDelivering && QGuiApplication::clipboard()->ownsClipboard())
        m_waiting.clear();
}

void WindowPasteboard::followFocus()
{
    if (isReachable())
        deliver();
    else if (m_isDelivered)
        m_waiting.clear(); // from here on others copy
}

void WindowPasteboard::put(PasteboardItem contents)
{
    m_waiting = std::move(contents);
    m_isDelivered = false;
    ++m_changeCount;
    if (m_isInHand)
        deliverAgain();
    else
        deliver();
}

void WindowPasteboard::deliver()
{
    if (m_waiting.isEmpty() || !isReachable())
        return;
    auto contents = std::make_unique<CountedData>(m_readCount);
    for (const PasteboardData &data : std::as_const(m_waiting))
        contents->setData(data.type, data.bytes);
    m_isDelivered = true;
    m_isDelivering = true;
    QGuiApplication::clipboard()->setMimeData(contents.release()); // which owns it from here on
    m_isDelivering = false;
}

void WindowPasteboard::deliverAgain()
{
    deliver();
    if (m_isDelivered)
        m_waiting.clear();
}
