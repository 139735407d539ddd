#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QtGlobal>

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
