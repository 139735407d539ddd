#include "machine/x11/X11KeyTaps.h"

#include "base/AccessibilityTrust.h"
#include "machine/x11/KeyWatch.h"

#include <QCoreApplication>

/// One watch among those that the thread serves.
class X11KeyTaps::Tap final : public KeyTap
{
public:
    explicit Tap(const X11KeyTaps &taps) : m_taps(taps) {}
    ~Tap() override
    {
        m_taps.there([this](KeyWatch &watch) {
            watch.remove(*this);
            return true;
        });
    }
    Q_DISABLE_COPY_MOVE(Tap)

    bool watch(std::span<const KeyChord> chords) override
    {
        const QList<KeyChord> wanted(chords.begin(), chords.end());
        return m_taps.there([&](KeyWatch &watch) { return watch.watch(*this, wanted); });
    }
    void enable() override
    {
        m_taps.there([](KeyWatch &watch) { return watch.regrab({}); });
    }

private:
    const X11KeyTaps &m_taps;
};

X11KeyTaps::X11KeyTaps(const QByteArray &display, const AccessibilityTrust &trust)
    : m_trust(trust),
      m_context(std::make_unique<QObject>())
{
    m_context->moveToThread(&m_thread);
    m_thread.setObjectName("keys");
    m_thread.start();
    const auto open = [this, display] { m_watch = std::make_unique<KeyWatch>(display); };
    QMetaObject::invokeMethod(m_context.get(), open, Qt::QueuedConnection);
}

X11KeyTaps::~X11KeyTaps()
{
    const auto close = [this] { m_watch.reset(); };
    QMetaObject::invokeMethod(m_context.get(), close, Qt::QueuedConnection);
    QMetaObject::invokeMethod(
        m_context.get(), [this] { m_thread.quit(); }, Qt::QueuedConnection);
    m_thread.wait();
}

std::unique_ptr<KeyTap> X11KeyTaps::install(std::span<const KeyChord> chords, Handler handler)
{
    if (!m_trust.isTrusted())
        return nullptr;
    auto tap = std::make_unique<Tap>(*this);
    const QList<KeyChord> wanted(chords.begin(), chords.end());
    const bool isGranted =
        there([&](KeyWatch &watch) { return watch.install(*tap, wanted, std::move(handler)); });
    m_isHeld = !isGranted;
    return isGranted ? std::move(tap) : nullptr;
}

QString X11KeyTaps::holder() const
{
    return m_isHeld ? QCoreApplication::translate("X11KeyTaps", "Another program") : QString();
}

bool X11KeyTaps::isWatched(const KeyChord &chord) const
{
    return there([&](const KeyWatch &watch) { return watch.isWatched(chord); });
}

bool X11KeyTaps::there(const std::function<bool(KeyWatch &)> &work) const
{
    bool result = false;
    // A handler that takes its tap into use again is there already.
    const bool isThere = QThread::currentThread() == &m_thread;
    QMetaObject::invokeMethod(
        m_context.get(), [&] { result = work(*m_watch); },
        isThere ? Qt::DirectConnection : Qt::BlockingQueuedConnection);
    return result;
}
