#pragma once

#include "base/SecretStore.h"

#include <QCoroTask>
#include <QMap>
#include <QObject>
#include <QString>

#include <cstdint>
#include <optional>
#include <stop_token>

/// The user's API keys and session token: one item per account name of the service "com.sayvane.app".
///
/// It keeps what it last read of each and reads anew, without asking anybody, as soon as it is made and
/// whenever the store tells that something may have changed. So what is shown of a secret is there at once,
/// and a store that hangs holds nobody up.
class Keychain final : public QObject
{
    Q_OBJECT
public:
    using Accessibility = SecretStore::Accessibility;

    /// The account of the session token; those of the keys are the providers'.
    static inline const QString sessionAccount = QStringLiteral("sayvane_session");

    struct ReadResult
    {
        /// The secret; absent when there is no item or the bytes are not UTF-8. While the store cannot be
        /// read it is what was read last.
        std::optional<QString> value;
        /// 0, `SecretStatus::itemNotFound`, or an error such as a locked keyring.
        int32_t status = SecretStatus::interactionNotAllowed;

        bool operator==(const ReadResult &) const = default;

        /// Whether the store could say what it holds, be it nothing.
        bool isReliable() const
        {
            return status == SecretStatus::success || status == SecretStatus::itemNotFound;
        }
        /// Whether the store has yet to answer: it is closed, slow, or was not asked so far.
        bool isPending() const
        {
            return status == SecretStatus::interactionNotAllowed || status == SecretStatus::ioError;
        }
        /// Whether there is no store, which holds nothing.
        bool isAbsent() const { return status == SecretStatus::notAvailable; }
    };

    explicit Keychain(SecretStore &store);
    ~Keychain() override;

    /// What is known now; nobody is asked.
    ReadResult read(const QString &account) const;

    /// The secret as it is known; where there is none it is looked for, and the owner of a closed store may
    /// be asked to open it.
    QCoro::Task<ReadResult> fetch(QString account, std::stop_token stop);

    /// Looks at every account anew.
    QCoro::Task<> refresh();

    /// Replaces whatever the account holds; empty text deletes the item. Gives 0 or the failed step's
    /// status. When the new item cannot be added after the old one was removed, none remains.
    QCoro::Task<int32_t> save(QString value, QString account, Accessibility accessibility);

    /// A sentence for a failed status.
    QString message(int32_t status) const;

Q_SIGNALS:
    /// Something else is known of an account.
    void changed();

private:
    struct Entry
    {
        ReadResult known;
        int looks = 0;   // so far; each has its number
        int learned = 0; // the one that told what is known
        int saving = 0;  // what is seen meanwhile is neither the old nor the new
    };

    QCoro::Task<ReadResult> look(QString account, SecretStore::Asking asking, std::stop_token stop);
    void learn(const QString &account, const ReadResult &result, int number);

    SecretStore &m_store;
    QMap<QString, Entry> m_entries;
    SecretStore::Listener m_listener;
    std::stop_source m_stop; // stopped when this object goes away
};
