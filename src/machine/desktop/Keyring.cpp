#include "machine/desktop/Keyring.h"

#include <QScopeGuard>

using namespace std::chrono_literals;

namespace {

constexpr auto quiet = 60s;

} // namespace

Keyring::Keyring(const Clock &clock, std::function<void()> changed)
    : m_clock(clock),
      m_session({.changed = std::move(changed), .left = [this] { m_session.abandonPrompt(); }})
{
}

QCoro::Task<SecretStore::Found> Keyring::find(Attributes attributes, SecretStore::Asking asking)
{
    ++m_underWay;
    const auto leave = qScopeGuard([this] { --m_underWay; });
    const SecretStore::Found found = co_await look(attributes, asking);
    if (found.status == SecretStatus::ioError)
        m_session.lookAgainLater();
    co_return found;
}

QCoro::Task<SecretStore::Found> Keyring::look(Attributes attributes, SecretStore::Asking asking)
{
    SecretStore::Found found;
    // A closed keyring is not searched: some show nothing then, others ask on their own.
    const Outcome<QString> collection = co_await openDefault(asking, Occasion::lookUp);
    if (!collection) {
        found.status = collection.error();
        co_return found;
    }
    const Outcome<KeyringSession::Items> items = co_await m_session.search(attributes);
    if (!items) {
        found.status = items.error();
        co_return found;
    }
    if (items->unlocked.isEmpty() && items->locked.isEmpty())
        co_return found;
    if (items->unlocked.isEmpty()) {
        const Outcome<void> opened = co_await open(items->locked, asking, Occasion::lookUp);
        if (!opened) {
            found.status = opened.error();
            co_return found;
        }
    }
    const QString item = (items->unlocked + items->locked).first();
    Outcome<KeyringSession::Secret> secret = co_await m_session.secret(item);
    if (!secret && secret.error() == SecretStatus::ioError)
        secret = co_await m_session.secret(item); // in a session begun anew
    found.status = secret ? SecretStatus::success : secret.error();
    if (secret)
        found.data = secret->bytes;
    co_return found;
}

QCoro::Task<int32_t> Keyring::add(Attributes attributes, QString label, QByteArray data)
{
    ++m_underWay;
    const auto leave = qScopeGuard([this] { --m_underWay; });
    const int32_t status = co_await create(attributes, label, data);
    co_return status;
}

QCoro::Task<int32_t> Keyring::create(Attributes attributes, QString label, QByteArray data)
{
    Outcome<QString> collection = co_await openDefault(SecretStore::Asking::allowed, Occasion::act);
    if (collection && collection->isEmpty())
        collection = co_await makeDefault();
    if (!collection)
        co_return collection.error();
    const Outcome<KeyringSession::Items> items = co_await m_session.search(attributes);
    if (!items)
        co_return items.error();
    if (!items->unlocked.isEmpty() || !items->locked.isEmpty())
        co_return SecretStatus::duplicateItem;
    const QString where = *collection;
    Outcome<QString> prompt = co_await m_session.create(where, label, attributes, data);
    if (!prompt && prompt.error() == SecretStatus::ioError)
        prompt = co_await m_session.create(where, label, attributes, data); // in a session begun anew
    if (!prompt)
        co_return prompt.error();
    const QString question = *prompt;
    const Outcome<QString> created = co_await answered(question);
    co_return created ? SecretStatus::success : created.error();
}

QCoro::Task<int32_t> Keyring::remove(Attributes attributes)
{
    ++m_underWay;
    const auto leave = qScopeGuard([this] { --m_underWay; });
    const int32_t status = co_await removeAll(attributes);
    co_return status;
}

QCoro::Task<int32_t> Keyring::removeAll(Attributes attributes)
{
    const Outcome<QString> collection = co_await openDefault(SecretStore::Asking::allowed, Occasion::act);
    if (!collection)
        co_return collection.error();
    const Outcome<KeyringSession::Items> items = co_await m_session.search(attributes);
    if (!items)
        co_return items.error();
    if (!items->locked.isEmpty()) {
        const Outcome<void> opened =
            co_await open(items->locked, SecretStore::Asking::allowed, Occasion::act);
        if (!opened)
            co_return opened.error();
    }
    const QStringList all = items->unlocked + items->locked;
    for (const QString &item : all) {
        const Outcome<QString> prompt = co_await m_session.remove(item);
        if (!prompt)
            co_return prompt.error();
        const QString question = *prompt;
        const Outcome<QString> removed = co_await answered(question);
        if (!removed)
            co_return removed.error();
    }
    co_return all.isEmpty() ? SecretStatus::itemNotFound : SecretStatus::success;
}

Keyring::Answer<QString> Keyring::openDefault(SecretStore::Asking asking, Occasion occasion)
{
    const Outcome<QString> collection = co_await m_session.defaultCollection();
    if (!collection || collection->isEmpty())
        co_return collection;
    const QString path = *collection;
    const QStringList keyring{path};
    const Outcome<bool> isLocked = co_await m_session.isLocked(path);
    if (!isLocked)
        co_return std::unexpected(isLocked.error());
    if (*isLocked) {
        const Outcome<void> opened = co_await open(keyring, asking, occasion);
        if (!opened)
            co_return std::unexpected(opened.error());
    }
    co_return collection;
}

Keyring::Answer<void> Keyring::open(QStringList objects, SecretStore::Asking asking, Occasion occasion)
{
    const auto locked = std::unexpected(SecretStatus::interactionNotAllowed);
    if (asking == SecretStore::Asking::silently)
        co_return locked;
    const Turns::Turn turn = co_await m_prompts.take();
    if (occasion == Occasion::lookUp && m_clock.monotonic() < m_quietUntil)
        co_return locked;
    const Outcome<QString> prompt = co_await m_session.unlock(objects);
    if (!prompt)
        co_return std::unexpected(prompt.error());
    if (!prompt->isEmpty()) {
        const QString question = *prompt;
        const Outcome<QString> opened = co_await m_session.show(question);
        if (!opened) {
            m_quietUntil = m_clock.monotonic() + quiet;
            co_return locked;
        }
    }
    const Outcome<void> done;
    co_return done;
}

Keyring::Answer<QString> Keyring::answered(QString prompt)
{
    if (prompt.isEmpty()) {
        const Outcome<QString> nothing = QString();
        co_return nothing;
    }
    const Turns::Turn turn = co_await m_prompts.take();
    const Outcome<QString> outcome = co_await m_session.show(prompt);
    co_return outcome;
}

Keyring::Answer<QString> Keyring::makeDefault()
{
    const Outcome<QString> prompt = co_await m_session.createDefaultCollection();
    if (!prompt)
        co_return std::unexpected(prompt.error());
    const QString question = *prompt;
    const Outcome<QString> made = co_await answered(question);
    if (!made)
        co_return std::unexpected(SecretStatus::noDefaultKeyring);
    const Outcome<QString> collection = co_await m_session.defaultCollection();
    if (collection && collection->isEmpty())
        co_return std::unexpected(SecretStatus::noDefaultKeyring);
    co_return collection;
}
