#pragma once

#include "base/Clock.h"

#include <QList>

/// The meter's levels on their way from what was shown to what was measured last.
class LevelMotion
{
public:
    /// How long a change takes; it slows down towards its end.
    static constexpr Clock::Duration duration = std::chrono::milliseconds(50);

    /// Starts from what is shown at that time.
    void moveTo(const QList<double> &levels, Clock::Duration now);
    void jumpTo(const QList<double> &levels);
    QList<double> levels(Clock::Duration now) const;
    bool isMoving(Clock::Duration now) const { return m_from != m_to && now < m_start + duration; }

private:
    QList<double> m_from;
    QList<double> m_to;
    Clock::Duration m_start{};
};
