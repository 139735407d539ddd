#include "machine/desktop/LogFormat.h"

#include <QLoggingCategory>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct Level
{
    const char *name;
    const char *priority; // as in syslog(3)
};

Level levelOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return {"debug", "<7>"};
    case QtInfoMsg:
        return {"info", "<6>"};
    case QtWarningMsg:
        return {"warning", "<4>"};
    case QtCriticalMsg:
        return {"error", "<3>"};
    case QtFatalMsg:
        break;
    }
    return {"fatal", "<2>"};
}

/// The text on one line, with nothing in it that a terminal would obey.
QByteArray onOneLine(const QString &message)
{
    QString text;
    text.reserve(message.size());
    for (const QChar c : message) {
        if (c == u'\n')
            text += u" | ";
        else
            text += c.category() == QChar::Other_Control ? u' ' : c;
    }
    return text.toUtf8();
}

/// Whether the standard error stream is the one that journald gave us: systemd.exec(5), JOURNAL_STREAM.
LogFormat::Sink sinkOfStandardError()
{
    struct stat facts = {};
    if (fstat(STDERR_FILENO, &facts) != 0)
        return LogFormat::Sink::terminal;
    const QByteArray stream =
        QByteArray::number(quint64(facts.st_dev)) + ':' + QByteArray::number(quint64(facts.st_ino));
    return qgetenv("JOURNAL_STREAM") == stream ? LogFormat::Sink::journal : LogFormat::Sink::terminal;
}

void writeAll(const QByteArray &line)
{
    qsizetype done = 0;
    while (done < line.size()) {
        const ssize_t count = write(STDERR_FILENO, line.constData() + done, size_t(line.size() - done));
        if (count < 0 && errno != EINTR)
            return;
        done += std::max<ssize_t>(count, 0);
    }
}

void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    static const LogFormat format{sinkOfStandardError()};
    static LogRepeats repeats;
    if (!repeats.isNews(type, context.category, message, std::chrono::steady_clock::now()))
        return;
    writeAll(format.line(type, context.category, message, QDateTime::currentDateTimeUtc()));
}

} // namespace

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

QByteArray LogFormat::line(QtMsgType type, const char *category, const QString &message,
                           const QDateTime &time) const
{
    const Level level = levelOf(type);
    const QByteArray start = sink == Sink::journal
                                 ? QByteArray(level.priority)
                                 : time.toUTC().toString(Qt::ISODateWithMs).toLatin1() + ' ';
    return start + level.name + ' ' + (category ? category : "default") + ": " + onOneLine(message) + '\n';
}

void installLog()
{
    QLoggingCategory::setFilterRules(u"*.debug=false\n*.info=false\ncom.sayvane.app.*.info=true\n"_s);
    qInstallMessageHandler(handle);
}
