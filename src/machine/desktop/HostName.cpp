#include "machine/desktop/HostName.h"

#include <QFile>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace {

/// The value of a shell-like assignment: quotes removed, escaped characters taken as they stand.
QString unquoted(QStringView value)
{
    QChar quote;
    QString text;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        if (c == u'\\' && quote != u'\'' && i + 1 < value.size())
            text += value[++i];
        else if (quote.isNull() && (c == u'"' || c == u'\''))
            quote = c;
        else if (c == quote)
            quote = {};
        else
            text += c;
    }
    return text.trimmed();
}

QString prettyName(const QString &path)
{
    constexpr QStringView key = u"PRETTY_HOSTNAME=";
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString name;
    const QStringList lines = QString::fromUtf8(file.read(64 * 1024)).split(u'\n');
    for (const QString &line : lines) {
        const QStringView assignment = QStringView(line).trimmed();
        if (assignment.startsWith(key))
            name = unquoted(assignment.mid(key.size())); // the last one counts, as in a shell
    }
    return name;
}

} // namespace

HostName::HostName(QString machineInfo) : m_machineInfo(std::move(machineInfo))
{
}

QString HostName::localizedName() const
{
    const QString pretty = prettyName(m_machineInfo);
    return pretty.isEmpty() ? QSysInfo::machineHostName().section(u'.', 0, 0) : pretty;
}
