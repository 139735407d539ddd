#include "machine/desktop/SecretServiceStore.h"

#include "machine/desktop/XdgFolders.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Somebody's words wait meanwhile.
constexpr auto lookUpLimit = 60s;

} // namespace

SecretServiceStore::SecretServiceStore(Clock &clock, QString profile)
    : m_clock(clock),
      m_profile(std::move(profile))
{
}

SecretServiceStore::~SecretServiceStore()
{
    while (!m_underWay.empty()) { // also those that a waiter starts on being told
        const std::function<void()> end = m_underWay.front();
        end();
    }
    if (!m_thread)
        return;
    m_thread->run([this, thread = m_thread.get()] {
        m_keyring->cancel();
        thread->runUntil([this] { return !m_keyring->isBusy(); });
        m_keyring.reset();
    });
    m_thread.reset();
}

void SecretServiceStore::start()
{
    if (m_thread)
        return;
    m_thread = std::make_unique<GlibThread>();
    m_thread->run([this] {
        m_keyring = std::make_unique<Keyring>(m_clock, [this] {
            QMetaObject::invokeMethod(
                &m_here, [this] { m_listeners.tell(); }, Qt::QueuedConnection);
        });
    });
}

template <typename T>
QCoro::Task<T> SecretServiceStore::there(Work<T> work, T abandoned)
{
    start();
    const auto completion = std::make_shared<Completion<T>>();
    const auto end =
        m_underWay.insert(m_underWay.end(), [completion, abandoned] { completion->complete(abandoned); });
    const std::function<void(T)> deliver = [this, completion](const T &outcome) {
        QMetaObject::invokeMethod(
            &m_here, [completion, outcome] { completion->complete(outcome); }, Qt::QueuedConnection);
    };
    m_thread->run([this, work, deliver] { serve<T>(*m_keyring, work, deliver); });
    const typename Completion<T>::Awaiter awaiter{completion.get()};
    const T outcome = co_await awaiter;
    m_underWay.erase(end);
    co_return outcome;
}

template <typename T>
QCoro::Task<> SecretServiceStore::serve(Keyring &keyring, Work<T> work, std::function<void(T)> deliver)
{
    const T outcome = co_await work(keyring);
    deliver(outcome);
}

Keyring::Attributes SecretServiceStore::attributes(const QString &service, const QString &account) const
{
    return {
        {u"xdg:schema"_s, u"com.sayvane.app"_s},
        {u"service"_s, service},
        {u"account"_s, account},
        // A search finds items that have more attributes than it names, so the ordinary profile has a
        // value too; and not the empty one, which not every keyring tells from a missing attribute.
        {u"profile"_s, Profile::systemName(m_profile)},
    };
}

QCoro::Task<SecretStore::Found> SecretServiceStore::find(QString service, QString account, Asking asking,
                                                         std::stop_token stop)
{
    const Found locked{std::nullopt, SecretStatus::interactionNotAllowed};
    const Found gone{std::nullopt, SecretStatus::notAvailable};
    if (stop.stop_requested())
        co_return locked;
    const Work<Found> work = [wanted = attributes(service, account), asking](Keyring &keyring) {
        return keyring.find(wanted, asking);
    };
    // The look-up itself goes on when nobody waits for it any more: an answer to it is heard all the same.
    const auto first = std::make_shared<Completion<Found>>();
    const std::function<void()> leave = [first, locked] { first->complete(locked); };
    const std::unique_ptr<Timer> limit = m_clock.after(lookUpLimit, leave);
    const std::stop_callback stopping(stop, leave);
    pass(there(work, gone), first);
    const Completion<Found>::Awaiter awaiter{first.get()};
    const Found found = co_await awaiter;
    co_return found;
}

QCoro::Task<> SecretServiceStore::pass(QCoro::Task<Found> from, std::shared_ptr<Completion<Found>> to)
{
    const Found found = co_await from;
    to->complete(found);
}

QCoro::Task<int32_t> SecretServiceStore::add(QString service, QString account, QByteArray data, Accessibility)
{
    const Work<int32_t> work = [wanted = attributes(service, account), label = u"Sayvane: "_s + account,
                                data](Keyring &keyring) { return keyring.add(wanted, label, data); };
    return there(work, SecretStatus::notAvailable);
}

QCoro::Task<int32_t> SecretServiceStore::remove(QString service, QString account)
{
    const Work<int32_t> work = [wanted = attributes(service, account)](Keyring &keyring) {
        return keyring.remove(wanted);
    };
    return there(work, SecretStatus::notAvailable);
}

std::optional<QString> SecretServiceStore::message(int32_t status) const
{
    switch (status) {
    case SecretStatus::userCanceled:
        return tr("The keyring's question was dismissed.");
    case SecretStatus::notAvailable:
        return tr("No keyring is running on this desktop, so nothing can be kept secret.");
    case SecretStatus::authFailed:
        return tr("The keyring refused access.");
    case SecretStatus::itemNotFound:
        return tr("The item is not in the keyring.");
    case SecretStatus::interactionNotAllowed:
        return tr("The keyring is locked. Unlock it and try again.");
    case SecretStatus::ioError:
        return tr("The keyring did not answer as it should. Try again.");
    case SecretStatus::duplicateItem:
        return tr("The item is already in the keyring.");
    case SecretStatus::noDefaultKeyring:
        return tr("There is no keyring yet. Answer the desktop's question about a new one and try again.");
    default:
        return std::nullopt;
    }
}
