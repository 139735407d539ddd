#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

/// Status numbers of a secret store, fixed so that callers and messages can rely on them.
namespace SecretStatus {
inline constexpr int32_t success = 0;
inline constexpr int32_t userCanceled = -128;
inline constexpr int32_t notAvailable = -25291;
inline constexpr int32_t authFailed = -25293;
inline constexpr int32_t duplicateItem = -25299;
inline constexpr int32_t itemNotFound = -25300;
inline constexpr int32_t noDefaultKeyring = -25307;      ///< the user has no keyring yet
inline constexpr int32_t interactionNotAllowed = -25308; ///< the store is locked
inline constexpr int32_t ioError = -36;
} // namespace SecretStatus

/// Passwords and tokens, one item per service and account, kept encrypted by the user's keyring.
///
/// No call waits: its outcome comes when the store has answered, which may be at once.
class SecretStore
{
public:
    /// Called on the main thread whenever another look may find something else: an item came, changed or
    /// went, the store was opened or closed, appeared, or may have got over its trouble. Nobody's any more
    /// once it is given up.
    using Listener = std::shared_ptr<const std::function<void()>>;

    struct Found
    {
        std::optional<QByteArray> data;
        int32_t status = SecretStatus::itemNotFound;
    };

    /// When the secret may be read, and whether it may move to another computer with a backup.
    enum class Accessibility { afterFirstUnlock, afterFirstUnlockThisDeviceOnly };

    /// Whether a store that is closed may ask its owner to open it.
    enum class Asking { silently, allowed };

    virtual ~SecretStore() = default;

    /// Waits a minute at most for the owner, and no longer once a stop is asked for.
    virtual QCoro::Task<Found> find(QString service, QString account, Asking asking,
                                    std::stop_token stop) = 0;
    /// Adds an item; one that exists already under the account is an error. The owner may be asked, and
    /// has all the time they need.
    virtual QCoro::Task<int32_t> add(QString service, QString account, QByteArray data,
                                     Accessibility accessibility) = 0;
    /// The same for the end of an item.
    virtual QCoro::Task<int32_t> remove(QString service, QString account) = 0;

    virtual void follow(const Listener &listener) = 0;

    /// A sentence for a failed status; none for a number that this store does not know.
    virtual std::optional<QString> message(int32_t status) const = 0;
};
