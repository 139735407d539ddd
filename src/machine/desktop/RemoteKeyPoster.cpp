#include "machine/desktop/RemoteKeyPoster.h"

#include "base/Completion.h"
#include "machine/desktop/KeyPositions.h"

#include <QPointer>

#include <utility>

#include <linux/input-event-codes.h>

namespace {

constexpr uint firstXKeycode = 8;
constexpr KeyChord commandV{.keyCode = 9, .flags = KeyFlags::command};

/// In the order of their presses, as the kernel numbers them.
QList<uint> keysOf(const KeyChord &chord)
{
    if (chord == commandV)
        return {KEY_LEFTSHIFT, KEY_INSERT};
    QList<uint> keys;
    for (const auto &[flag, key] :
         {std::pair(KeyFlags::control | KeyFlags::command, uint(KEY_LEFTCTRL)),
          std::pair(KeyFlags::shift, uint(KEY_LEFTSHIFT)), std::pair(KeyFlags::option, uint(KEY_LEFTALT))}) {
        if (chord.flags & flag)
            keys.append(key);
    }
    keys.append(KeyPositions::xKeycode(chord.keyCode) - firstXKeycode);
    return keys;
}

} // namespace

const uint RemoteKeyPoster::unknownKey = KEY_UNKNOWN;

RemoteKeyPoster::RemoteKeyPoster(LendToPrimary lendToPrimary) : m_lendToPrimary(std::move(lendToPrimary))
{
}

RemoteKeyPoster::~RemoteKeyPoster()
{
    for (const auto &waiting : std::exchange(m_waiting, {}))
        waiting->complete(false);
}

void RemoteKeyPoster::prepare()
{
    const auto opening = [](RemoteKeyPoster &self) -> QCoro::Task<> { co_await self.opened(); };
    opening(*this);
}

QCoro::Task<bool> RemoteKeyPoster::opened()
{
    const QPointer self(this);
    if (isOpen())
        co_return true;
    if (m_isOpening) {
        const auto turn = std::make_shared<Completion<bool>>();
        m_waiting.append(turn);
        const Completion<bool>::Awaiter ended{turn.get()};
        co_return co_await ended;
    }
    m_isOpening = true;
    const bool isOpened = co_await open();
    if (!self)
        co_return false;
    m_isOpening = false;
    if (isOpened) {
        press(unknownKey, true);
        press(unknownKey, false);
    }
    for (const auto &waiting : std::exchange(m_waiting, {}))
        waiting->complete(isOpened);
    co_return isOpened;
}

QCoro::Task<bool> RemoteKeyPoster::post(KeyChord chord, std::function<bool()> mayStill)
{
    const QPointer self(this);
    const bool isReady = co_await opened();
    if (!isReady || !self)
        co_return false;
    if (chord == commandV) {
        co_await m_lendToPrimary();
        if (!self)
            co_return false;
    }
    const QList<uint> keys = keysOf(chord);
    if (!mayStill() || !isOpen()) {
        close();
        co_return false;
    }
    for (const uint key : keys)
        press(key, true);
    for (auto key = keys.crbegin(); key != keys.crend(); ++key)
        press(*key, false);
    co_await settled();
    if (self)
        close();
    co_return true;
}
