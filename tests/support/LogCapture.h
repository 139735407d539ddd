#pragma once

#include <QStringList>
#include <QtGlobal>

/// Keeps what is logged while it lives, instead of printing it.
class LogCapture
{
public:
    LogCapture() : m_previous(qInstallMessageHandler(keep)) { s_lines.clear(); }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;
    ~LogCapture() { qInstallMessageHandler(m_previous); }

    static const QStringList &lines() { return s_lines; }

private:
    static void keep(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        s_lines.append(QString::fromUtf8(context.category) +
                       QLatin1StringView(type == QtInfoMsg ? " info: " : " error: ") + text);
    }

    static inline QStringList s_lines;
    QtMessageHandler m_previous;
};
