#include "cli/HistoryTable.h"

using namespace Qt::StringLiterals;

namespace {

QString quoted(QString field)
{
    static const QString special = u",\"\r\n"_s;
    const bool needsQuotes = std::any_of(field.cbegin(), field.cend(),
                                         [](QChar character) { return special.contains(character); });
    return needsQuotes ? u'"' + field.replace(u'"', u"\"\""_s) + u'"' : field;
}

QString number(const std::optional<qint64> &value)
{
    return value ? QString::number(*value) : QString();
}

QString row(const QStringList &fields)
{
    QStringList cells;
    for (const QString &field : fields)
        cells.append(quoted(field));
    return cells.join(u',') + u"\r\n"_s;
}

} // namespace

QString HistoryTable::text(const QList<Dictation> &records, const QTimeZone &zone)
{
    QString table;
    for (const Dictation &record : records)
        table +=
            record.date.toTimeZone(zone).toString(u"yyyy-MM-dd HH:mm  "_s) + record.text.simplified() + u'\n';
    return table;
}

QString HistoryTable::csv(const QList<Dictation> &records)
{
    QString table = row({u"id"_s, u"date"_s, u"durationSeconds"_s, u"wordCount"_s, u"text"_s, u"rawText"_s,
                         u"transcribeMs"_s, u"cleanupMs"_s, u"audioBytes"_s, u"provider"_s,
                         u"transcriptionModel"_s, u"chatModel"_s});
    for (const Dictation &record : records)
        table +=
            row({record.id.toString(QUuid::WithoutBraces), record.date.toUTC().toString(Qt::ISODate),
                 QString::number(record.durationSeconds), QString::number(record.wordCount), record.text,
                 record.rawText.value_or(QString()), number(record.transcribeMs), number(record.cleanupMs),
                 number(record.audioBytes), record.providerRaw.value_or(QString()),
                 record.transcriptionModel.value_or(QString()), record.chatModel.value_or(QString())});
    return table;
}
