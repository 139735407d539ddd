#include "overlay/LevelMotion.h"

void LevelMotion::moveTo(const QList<double> &target, Clock::Duration now)
{
    m_from = levels(now);
    m_from.resize(target.size());
    m_to = target;
    m_start = now;
}

void LevelMotion::jumpTo(const QList<double> &target)
{
    m_from = target;
    m_to = target;
}

QList<double> LevelMotion::levels(Clock::Duration now) const
{
    if (!isMoving(now))
        return m_to;
    const double left =
        1 - static_cast<double>((now - m_start).count()) / static_cast<double>(duration.count());
    QList<double> levels = m_to;
    for (qsizetype i = 0; i < levels.size(); ++i)
        levels[i] += (m_from[i] - m_to[i]) * left * left;
    return levels;
}
