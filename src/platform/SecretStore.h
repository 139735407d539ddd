#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>

/// Status numbers of a secret store, fixed so that callers and messages can rely on them.
namespace SecretStatus {
inline constexpr int32_t success = 0;
inline constexpr int32_t userCanceled = -128;
inline constexpr int32_t notAvailable = -25291;
inline constexpr int32_t authFailed = -25293;
inline constexpr int32_t duplicateItem = -25299;
inline constexpr int32_t itemNotFound = -25300;
inline constexpr int32_t noDefaultKeyring = -25307; ///< the user has no keyring yet
inline constexpr int32_t interactionNotAllowed = -25308; ///< the store is locked
inline constexpr int32_t ioError = -36;
} // namespace SecretStatus

/// Passwords and tokens, one item per service and account, kept encrypted by the user's keyring.
class SecretStore
{
public:
    struct Found
    {
        std::optional<QByteArray> data;
        int32_t status = SecretStatus::itemNotFound;
    };

    /// When the secret may be read, and whether it may move to another computer with a backup.
    enum class Accessibility { afterFirstUnlock, afterFirstUnlockThisDeviceOnly };

    virtual ~SecretStore() = default;

    virtual Found find(const QString &service, const QString &account) = 0;
    /// Adds an item; one that exists already under the account is an error.
    virtual int32_t add(const QString &service, const QString &account, const QByteArray &data,
                        Accessibility accessibility) = 0;
    virtual int32_t remove(const QString &service, const QString &account) = 0;

    /// A sentence for a failed status; none for a number that this store does not know.
    virtual std::optional<QString> message(int32_t status) const = 0;
};
