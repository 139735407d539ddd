#include "cloud/labs/LabsAnswerMode.h"

#include "preferences/Prefs.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr auto duration = 30min;
// Timers do not see a clock that is set or a computer that sleeps, so the clock is looked at meanwhile.
constexpr auto checkInterval = 15s;

} // namespace

LabsAnswerMode::LabsAnswerMode(Prefs &prefs, Clock &clock) : m_prefs(prefs), m_clock(clock)
{
    const auto end = m_prefs.labsAnswerModeExpiresAt();
    m_enabled = end && *end > m_clock.now();
    if (m_enabled)
        armExpiry();
    else
        m_prefs.labsAnswerModeExpiresAt.set(std::nullopt);
}

void LabsAnswerMode::setEnabled(bool on)
{
    if (m_enabled == on)
        return;
    m_enabled = on;
    if (on) {
        m_prefs.labsAnswerModeExpiresAt.set(
            m_clock.now().addMSecs(std::chrono::milliseconds(duration).count()));
        armExpiry();
    } else {
        m_prefs.labsAnswerModeExpiresAt.set(std::nullopt);
        m_expireTask.reset();
    }
    Q_EMIT enabledChanged();
}

void LabsAnswerMode::armExpiry()
{
    const QDateTime now = m_clock.now();
    const std::chrono::milliseconds left(now.msecsTo(m_prefs.labsAnswerModeExpiresAt().value_or(now)));
    m_deadline = m_clock.monotonic() + std::clamp<std::chrono::milliseconds>(left, 0ms, duration);
    awaitExpiry();
}

void LabsAnswerMode::awaitExpiry()
{
    const auto delay = std::min<Clock::Duration>(m_deadline - m_clock.monotonic(), checkInterval);
    m_expireTask = m_clock.after(delay, [this] {
        if (isOver())
            setEnabled(false);
        else
            awaitExpiry();
    });
}

bool LabsAnswerMode::isOver() const
{
    return m_clock.monotonic() >= m_deadline ||
           m_prefs.labsAnswerModeExpiresAt().value_or(m_clock.now()) <= m_clock.now();
}
