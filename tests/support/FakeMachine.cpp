#include "support/FakeMachine.h"

#include "base/Sleep.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Goes on when the event loop comes to it.
QCoro::Task<> turnOf(QObject &object)
{
    const auto turn = std::make_shared<Completion<bool>>();
    const auto begin = [turn] { turn->complete(true); };
    QMetaObject::invokeMethod(&object, begin, Qt::QueuedConnection);
    const Completion<bool>::Awaiter awaiter{turn.get()};
    co_await awaiter;
}

} // namespace

QCoro::Task<SecretStore::Found> FakeSecretStore::find(QString service, QString account, Asking asking,
                                                      std::stop_token stop)
{
    services.append(service);
    co_await answering(stop);
    if (stop.stop_requested())
        co_return Found{std::nullopt, SecretStatus::interactionNotAllowed};
    const int32_t status = unreadable.contains(account) ? SecretStatus::interactionNotAllowed : findStatus;
    if (status == SecretStatus::interactionNotAllowed && asking == Asking::allowed)
        ++asked;
    if (status != SecretStatus::success)
        co_return Found{std::nullopt, status};
    if (!items.contains(account))
        co_return Found{std::nullopt, SecretStatus::itemNotFound};
    co_return Found{items.value(account), SecretStatus::success};
}

QCoro::Task<int32_t> FakeSecretStore::add(QString service, QString account, QByteArray data,
                                          Accessibility accessibility)
{
    services.append(service);
    co_await answering({});
    if (items.contains(account))
        co_return SecretStatus::duplicateItem;
    if (addStatus == SecretStatus::success) {
        accessibilities.insert(account, accessibility);
        items.insert(account, data);
    }
    const int32_t status = addStatus;
    co_return status;
}

QCoro::Task<int32_t> FakeSecretStore::remove(QString service, QString account)
{
    services.append(service);
    co_await answering({});
    const int32_t status = removeStatus;
    if (status != SecretStatus::success)
        co_return status;
    co_return items.remove(account) ? SecretStatus::success : SecretStatus::itemNotFound;
}

QCoro::Task<> FakeSecretStore::answering(std::stop_token stop)
{
    if (!m_hangs)
        co_return;
    const auto answer = std::make_shared<Completion<bool>>();
    m_waiting.push_back(answer);
    const std::function<void()> leave = [answer] { answer->complete(false); };
    const std::stop_callback onStop(stop, leave);
    const Completion<bool>::Awaiter awaiter{answer.get()};
    co_await awaiter;
}

void FakeSecretStore::setHangs(bool hangs)
{
    m_hangs = hangs;
    for (; !hangs && !m_waiting.empty(); m_waiting.pop_front()) {
        const auto answer = m_waiting.front();
        answer->complete(true);
    }
}

void FakeSecretStore::setTrouble(int32_t status)
{
    findStatus = addStatus = removeStatus = status;
    m_listeners.tell();
}

std::optional<QString> FakeSecretStore::message(int32_t status) const
{
    if (status == SecretStatus::interactionNotAllowed)
        return u"The keyring is locked."_s;
    return std::nullopt;
}

QCoro::Task<QList<PasteboardItem>> FakePasteboard::items(std::chrono::milliseconds limit)
{
    ++asked;
    const QList<PasteboardItem> there = contents;
    co_await turnOf(m_thread);
    const bool isSlow = !ours && ownerNeeds.count() > 0;
    if (isSlow) {
        const std::stop_token never;
        co_await sleepFor(m_clock, std::min(ownerNeeds, limit), never);
    }
    co_return isSlow &&ownerNeeds > limit ? QList<PasteboardItem>() : there;
}

QCoro::Task<bool> FakeKeyPoster::post(KeyChord chord, std::function<bool()> mayStill)
{
    if (whileWaiting)
        whileWaiting();
    co_await turnOf(m_server);
    if (!works || !mayStill())
        co_return false;
    posted.append(chord);
    clipboardWhenPosted.append(pasteboard.text());
    pasteboard.reads += isReadAtOnce;
    co_return true;
}

// What is still under way is brought to its end, or nobody would free it.
FakePasteboard::~FakePasteboard()
{
    ownerNeeds = {};
    QCoreApplication::sendPostedEvents(&m_thread);
}

FakeKeyPoster::~FakeKeyPoster()
{
    QCoreApplication::sendPostedEvents(&m_server);
}

QString FakePasteboard::text() const
{
    for (const PasteboardItem &item : contents) {
        for (const PasteboardData &data : item) {
            if (data.type == "text/plain"_L1)
                return QString::fromUtf8(data.bytes);
        }
    }
    return {};
}

QStringList FakeFolders::recordings() const
{
    return QDir(temporary()).entryList({u"sayvane-*.wav"_s});
}

class FakeKeyTaps::Tap final : public KeyTap
{
public:
    explicit Tap(FakeKeyTaps &keyboard) : m_keyboard(keyboard) {}
    ~Tap() override
    {
        m_keyboard.m_handler = nullptr;
        m_keyboard.watched.clear();
    }
    bool watch(std::span<const KeyChord> chords) override
    {
        m_keyboard.watched = QList<KeyChord>(chords.begin(), chords.end());
        return true;
    }
    void enable() override { ++m_keyboard.enables; }

private:
    FakeKeyTaps &m_keyboard;
};

std::unique_ptr<KeyTap> FakeKeyTaps::install(std::span<const KeyChord> chords, Handler handler)
{
    if (!allowsInstall)
        return nullptr;
    ++installs;
    m_handler = std::move(handler);
    auto tap = std::make_unique<Tap>(*this);
    tap->watch(chords);
    return tap;
}

KeyVerdict FakeKeyTaps::tap(qint64 keyCode, quint64 flags)
{
    const KeyVerdict verdict = send({KeyEventType::keyDown, keyCode, flags, false});
    send({KeyEventType::keyUp, keyCode, flags, false});
    QCoreApplication::processEvents();
    return verdict;
}

class FakeLocalKeys::Monitor final : public LocalKeyMonitor
{
public:
    explicit Monitor(FakeLocalKeys &keys) : m_keys(keys) {}
    ~Monitor() override { m_keys.m_handler = nullptr; }
    Q_DISABLE_COPY_MOVE(Monitor)

private:
    FakeLocalKeys &m_keys;
};

std::unique_ptr<LocalKeyMonitor> FakeLocalKeys::addMonitor(Handler handler)
{
    m_handler = std::move(handler);
    return std::make_unique<Monitor>(*this);
}

class FakePresence::Delay final : public Presence::Wakefulness
{
public:
    explicit Delay(int &held) : m_held(held) { ++m_held; }
    ~Delay() override { --m_held; }

private:
    int &m_held;
};

std::unique_ptr<Presence::Wakefulness> FakePresence::delaySleep()
{
    return std::make_unique<Delay>(delays);
}
