#include "history/LocalDays.h"

#include <chrono>
#include <limits>

namespace {

using std::chrono::days;
using std::chrono::milliseconds;

constexpr qint64 julianDayOf1970 = 2440588;

} // namespace

qint64 LocalDays::dayOf(const QDateTime &moment)
{
    const qint64 instant = moment.toMSecsSinceEpoch();
    const auto local = milliseconds(instant + stretchOf(instant).offset);
    return julianDayOf1970 + std::chrono::floor<days>(local).count();
}

const LocalDays::Stretch &LocalDays::stretchOf(qint64 moment)
{
    const auto holds = [&](qsizetype i) {
        return i < m_stretches.size() && m_stretches.at(i).begins <= moment &&
               moment < m_stretches.at(i).ends;
    };
    if (holds(m_latest))
        return m_stretches.at(m_latest);
    for (m_latest = 0; m_latest < m_stretches.size(); ++m_latest) {
        if (holds(m_latest))
            return m_stretches.at(m_latest);
    }
    const QDateTime asked = QDateTime::fromMSecsSinceEpoch(moment, Qt::UTC);
    const QTimeZone::OffsetData before = m_zone.previousTransition(asked.addMSecs(1));
    const QTimeZone::OffsetData after = m_zone.nextTransition(asked);
    m_stretches.append(
        {.begins =
             before.atUtc.isValid() ? before.atUtc.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min(),
         .ends = after.atUtc.isValid() ? after.atUtc.toMSecsSinceEpoch() : std::numeric_limits<qint64>::max(),
         .offset = qint64{1000} * m_zone.offsetFromUtc(asked)});
    return m_stretches.last();
}
