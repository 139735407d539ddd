#pragma once

#include "base/KeyPoster.h"

#include <QList>
#include <QObject>

#include <functional>
#include <memory>

template <typename T>
class Completion;

/// Types by a remote control of the desktop, which is opened for one paste and closed after it.
///
/// What has the keyboard is known of few programs there: Command-V is Shift+Insert, which all of them
/// understand, with the text as the PRIMARY selection too.
class RemoteKeyPoster : public QObject, public KeyPoster
{
    Q_OBJECT
public:
    /// Offers what is on the clipboard as the PRIMARY selection too; done when it is there.
    using LendToPrimary = std::function<QCoro::Task<>()>;

    explicit RemoteKeyPoster(LendToPrimary lendToPrimary);
    ~RemoteKeyPoster() override;
    Q_DISABLE_COPY_MOVE(RemoteKeyPoster)

    void prepare() override;
    QCoro::Task<bool> post(KeyChord chord, std::function<bool()> mayStill) override;

protected:
    virtual bool isOpen() const = 0;
    /// Opens the remote control within a time of its own; not called while it is open or opens.
    virtual QCoro::Task<bool> open() = 0;
    virtual void close() = 0;
    /// Presses or releases a key, by the kernel's number.
    virtual void press(uint key, bool isDown) = 0;
    /// Done when the desktop has taken all keys so far.
    virtual QCoro::Task<> settled() = 0;

    // A key without a meaning: the keyboard of a remote control comes with its first key, and windows take a
    // moment to notice.
    static const uint unknownKey;

private:
    QCoro::Task<bool> opened();

    LendToPrimary m_lendToPrimary;
    bool m_isOpening = false;
    QList<std::shared_ptr<Completion<bool>>> m_waiting; // for the one that opens it
};
