#pragma once

#include "platform/SecretStore.h"
#include "platform/linux/system/KeyringPrompt.h"
#include "platform/linux/system/KeyringSession.h"

class Clock;

/// Secrets in the desktop's keyring, by the freedesktop.org Secret Service. Used on the main thread.
///
/// An item has the attributes service, account and profile, so that no profile sees another's items.
/// Both levels of accessibility come to the same here: a keyring opens with the user's login and leaves
/// the computer only when the user carries its file away, encrypted.
///
/// No call waits for a person. When the keyring is locked, or there is none yet, the call fails with the
/// status that says so while the desktop asks the user; a later call then succeeds.
class SecretServiceStore final : public SecretStore
{
public:
    SecretServiceStore(const Clock &clock, QString profile);

    Found find(const QString &service, const QString &account) override;
    int32_t add(const QString &service, const QString &account, const QByteArray &data,
                Accessibility accessibility) override;
    int32_t remove(const QString &service, const QString &account) override;
    std::optional<QString> message(int32_t status) const override;

private:
    KeyringSession::Attributes attributes(const QString &service, const QString &account) const;
    int32_t locked(const QStringList &objects);
    int32_t absent();

    QString m_profile;
    KeyringSession m_session;
    KeyringPrompt m_prompt;
};
