#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QtGlobal>

#include <chrono>
#include <mutex>

/// Keeps a trouble that lasts from filling the log: what is tried every two seconds and fails every time
/// is told once. Safe from any thread.
class LogRepeats
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Whether the line should be written. A warning or worse that comes again within three seconds of
    /// its last time goes on being the same trouble.
    bool isNews(QtMsgType type, const QByteArray &category, const QString &message, Time now);

private:
    std::mutex m_mutex;
    QHash<QString, Time> m_lastTimes;
};
