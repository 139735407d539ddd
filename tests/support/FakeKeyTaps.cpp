#include "support/FakeKeyTaps.h"

#include <QCoreApplication>

class FakeKeyTaps::Tap final : public KeyTap
{
public:
    explicit Tap(FakeKeyTaps &keyboard) : m_keyboard(keyboard) {}
    ~Tap() override
    {
        m_keyboard.m_handler = nullptr;
        m_keyboard.watched.clear();
    }
    bool watch(std::span<const KeyChord> chords) override
    {
        m_keyboard.watched = QList<KeyChord>(chords.begin(), chords.end());
        return true;
    }
    void enable() override { ++m_keyboard.enables; }

private:
    FakeKeyTaps &m_keyboard;
};

std::unique_ptr<KeyTap> FakeKeyTaps::install(std::span<const KeyChord> chords, Handler handler)
{
    if (!allowsInstall)
        return nullptr;
    ++installs;
    m_handler = std::move(handler);
    auto tap = std::make_unique<Tap>(*this);
    tap->watch(chords);
    return tap;
}

KeyVerdict FakeKeyTaps::tap(qint64 keyCode, quint64 flags)
{
    const KeyVerdict verdict = send({KeyEventType::keyDown, keyCode, flags, false});
    send({KeyEventType::keyUp, keyCode, flags, false});
    QCoreApplication::processEvents();
    return verdict;
}
