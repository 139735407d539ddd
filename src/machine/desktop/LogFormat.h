#pragma once

#include <QByteArray>
#include <QDateTime>
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

/// One line per message: UTC time, level, category, text. Under journald the line begins with the
/// priority mark of sd-daemon(3) instead of a time, since the journal keeps both by itself.
struct LogFormat
{
    enum class Sink { terminal, journal };

    Sink sink = Sink::terminal;

    QByteArray line(QtMsgType type, const char *category, const QString &message,
                    const QDateTime &time) const;
};

/// Sends Qt's messages to the standard error stream in that format. Of Sayvane's own categories
/// ("com.sayvane.app.…") all but debugging is shown, of other libraries warnings and worse; the usual
/// QT_LOGGING_RULES change that.
void installLog();
