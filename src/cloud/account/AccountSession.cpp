#include "cloud/account/AccountSession.h"

#include "base/Json.h"
#include "cloud/account/AccountClient.h"
#include "preferences/Keychain.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

AccountSessionStore::AccountSessionStore(Keychain &keychain) : m_keychain(keychain)
{
}

std::optional<QString> AccountSessionStore::usable(const std::optional<QString> &stored) const
{
    const QString token = stored.value_or(QString()).trimmed();
    return token.isEmpty() || token == m_rejected ? std::nullopt : std::optional(token);
}

std::optional<QString> AccountSessionStore::token() const
{
    return usable(m_keychain.read(Keychain::sessionAccount).value);
}

bool AccountSessionStore::isPending() const
{
    return m_keychain.read(Keychain::sessionAccount).isPending();
}

QCoro::Task<std::optional<QString>> AccountSessionStore::fetch(std::stop_token stop)
{
    const Keychain::ReadResult found = co_await m_keychain.fetch(Keychain::sessionAccount, stop);
    if (stop.stop_requested())
        co_return std::optional<QString>();
    co_return usable(found.value);
}

QCoro::Task<int32_t> AccountSessionStore::save(QString token)
{
    if (!token.isEmpty())
        m_rejected.clear();
    return m_keychain.save(token.trimmed(), Keychain::sessionAccount,
                           Keychain::Accessibility::afterFirstUnlockThisDeviceOnly);
}

QCoro::Task<int32_t> AccountSessionStore::clear()
{
    return save(QString());
}

void AccountSessionStore::reject()
{
    m_rejected = token().value_or(m_rejected);
    clear();
}

std::expected<AccountSession, AccountError> AccountSession::decode(const QByteArray &json,
                                                                   const QString &typedEmail)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    JsonMembers answer(document.object());
    JsonMembers user(answer.object("user"_L1).value_or(QJsonObject()));
    const AccountSession session{
        .token = answer.text("token"_L1).value_or(QString()).trimmed(),
        .email = user.text("email"_L1).value_or(AccountClient::normalisedEmail(typedEmail)),
        .plan = user.text("plan"_L1).value_or(u"trial"_s),
        .dailyMinutes = user.wholeNumber("dailyMinutes"_L1).value_or(0),
        .expiresAt = AccountClient::date(answer.text("expiresAt"_L1))};
    if (!document.isObject() || !answer.isSound() || !user.isSound())
        return std::unexpected(AccountError::unreadable());
    if (session.token.isEmpty())
        return std::unexpected(AccountError::badResponse(
            AccountError::tr("Sayvane did not send a session back. Try signing in again.")));
    return session;
}
