#include "platform/linux/system/SecretServiceStore.h"

#include "platform/linux/system/Profile.h"

using namespace Qt::StringLiterals;

SecretServiceStore::SecretServiceStore(const Clock &clock, QString profile)
    : m_profile(std::move(profile)),
      m_prompt(clock, QDBusConnection::sessionBus())
{
}

KeyringSession::Attributes SecretServiceStore::attributes(const QString &service,
                                                          const QString &account) const
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

SecretStore::Found SecretServiceStore::find(const QString &service, const QString &account)
{
    const auto items = m_session.search(attributes(service, account));
    if (!items)
        return {std::nullopt, items.error()};
    if (!items->unlocked.isEmpty()) {
        const auto secret = m_session.secret(items->unlocked.first());
        if (!secret)
            return {std::nullopt, secret.error()};
        return {*secret, SecretStatus::success};
    }
    return {std::nullopt, items->locked.isEmpty() ? absent() : locked(items->locked)};
}

int32_t SecretServiceStore::add(const QString &service, const QString &account, const QByteArray &data,
                                Accessibility)
{
    const auto items = m_session.search(attributes(service, account));
    if (!items)
        return items.error();
    if (!items->unlocked.isEmpty())
        return SecretStatus::duplicateItem;
    if (!items->locked.isEmpty())
        return locked(items->locked);
    const auto collection = m_session.defaultCollection();
    if (!collection)
        return collection.error();
    if (collection->isEmpty()) {
        m_prompt.createDefaultCollection();
        return SecretStatus::noDefaultKeyring;
    }
    const auto created =
        m_session.create(*collection, u"Sayvane: "_s + account, attributes(service, account), data);
    if (created)
        return SecretStatus::success;
    return created.error() == SecretStatus::interactionNotAllowed ? locked({*collection}) : created.error();
}

int32_t SecretServiceStore::remove(const QString &service, const QString &account)
{
    const auto items = m_session.search(attributes(service, account));
    if (!items)
        return items.error();
    if (!items->locked.isEmpty())
        return locked(items->locked);
    if (items->unlocked.isEmpty())
        return absent();
    for (const QString &item : items->unlocked) {
        const auto removed = m_session.remove(item);
        if (!removed)
            return removed.error();
    }
    return SecretStatus::success;
}

int32_t SecretServiceStore::locked(const QStringList &objects)
{
    m_prompt.unlock(objects);
    return SecretStatus::interactionNotAllowed;
}

/// Nothing was found: that is certain only when the keyring that would hold it is open.
int32_t SecretServiceStore::absent()
{
    const auto collection = m_session.defaultCollection();
    if (!collection)
        return collection.error();
    if (collection->isEmpty())
        return SecretStatus::itemNotFound;
    const auto isLocked = m_session.isLocked(*collection);
    if (!isLocked)
        return isLocked.error();
    return *isLocked ? locked({*collection}) : SecretStatus::itemNotFound;
}

std::optional<QString> SecretServiceStore::message(int32_t status) const
{
    switch (status) {
    case SecretStatus::userCanceled:
        return u"The keyring's question was dismissed."_s;
    case SecretStatus::notAvailable:
        return u"No keyring is running on this desktop, so nothing can be kept secret."_s;
    case SecretStatus::authFailed:
        return u"The keyring refused access."_s;
    case SecretStatus::itemNotFound:
        return u"The item is not in the keyring."_s;
    case SecretStatus::interactionNotAllowed:
        return u"The keyring is locked. Unlock it and try again."_s;
    case SecretStatus::ioError:
        return u"The keyring did not answer as it should. Try again."_s;
    case SecretStatus::duplicateItem:
        return u"The item is already in the keyring."_s;
    case SecretStatus::noDefaultKeyring:
        return u"There is no keyring yet. Answer the desktop's question about a new one and try again."_s;
    default:
        return std::nullopt;
    }
}
