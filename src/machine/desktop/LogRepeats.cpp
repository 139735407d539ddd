#include "machine/desktop/LogRepeats.h"

using namespace std::chrono_literals;

bool LogRepeats::isNews(QtMsgType type, const QByteArray &category, const QString &message, Time now)
{
    if (type == QtDebugMsg || type == QtInfoMsg)
        return true;
    static constexpr auto pause = 3s;
    const std::scoped_lock lock(m_mutex);
    m_lastTimes.removeIf([&](const auto &line) { return now - line.value() > pause; });
    const QString line = QString::fromUtf8(category) + u' ' + message;
    const bool isKnown = m_lastTimes.contains(line);
    m_lastTimes.insert(line, now);
    return !isKnown;
}
