#include "history/HistoryFile.h"

#include "base/Json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

QByteArray escaped(char16_t unit)
{
    switch (unit) {
    case u'"':
        return "\\\"";
    case u'\\':
        return "\\\\";
    case u'\n':
        return "\\n";
    case u'\t':
        return "\\t";
    case u'\r':
        return "\\r";
    default:
        return "\\u" + QByteArray::number(unit, 16).rightJustified(4, '0');
    }
}

void appendQuoted(QByteArray &json, QStringView text)
{
    json += '"';
    qsizetype plainBegin = 0; // what needs no escape is converted in one piece
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        if (unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        // Half a surrogate pair has no UTF-8 form; escaped it comes back as it was.
        if (unit.unicode() >= 0x20 && unit != u'"' && unit != u'\\' && !unit.isSurrogate())
            continue;
        json += text.sliced(plainBegin, i - plainBegin).toUtf8() + escaped(unit.unicode());
        plainBegin = i + 1;
    }
    json += text.sliced(plainBegin).toUtf8() + '"';
}

/// Two thousand dates are written on every save, so this is by hand: a format string costs ten times more.
QByteArray isoDate(const QDateTime &date)
{
    const auto time = std::chrono::sys_seconds(std::chrono::seconds(date.toSecsSinceEpoch()));
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day calendar(day);
    const std::chrono::hh_mm_ss clock(time - day);
    QByteArray text("0000-00-00T00:00:00Z");
    const auto put = [&text](qsizetype end, long long number) {
        for (; number > 0 && end > 0; number /= 10)
            text[--end] = static_cast<char>('0' + number % 10);
    };
    put(4, static_cast<int>(calendar.year()));
    put(7, static_cast<unsigned>(calendar.month()));
    put(10, static_cast<unsigned>(calendar.day()));
    put(13, clock.hours().count());
    put(16, clock.minutes().count());
    put(19, clock.seconds().count());
    return text;
}

/// One object under construction.
class ObjectWriter
{
public:
    explicit ObjectWriter(QByteArray &json) : m_json(json) { m_json += "  {"; }

    void text(QByteArrayView key, const QString &value)
    {
        begin(key);
        appendQuoted(m_json, value);
    }
    /// Text that needs no escaping.
    void ascii(QByteArrayView key, const QByteArray &value)
    {
        begin(key);
        m_json += '"';
        m_json += value;
        m_json += '"';
    }
    void integer(QByteArrayView key, qint64 value)
    {
        begin(key);
        m_json += QByteArray::number(value);
    }
    void real(QByteArrayView key, double value)
    {
        begin(key);
        m_json += std::isfinite(value) ? QByteArray::number(value, 'g', QLocale::FloatingPointShortest)
                                       : QByteArray("0");
    }
    void text(QByteArrayView key, const std::optional<QString> &value)
    {
        if (value)
            text(key, *value);
    }
    void integer(QByteArrayView key, const std::optional<qint64> &value)
    {
        if (value)
            integer(key, *value);
    }
    void finish() { m_json += "\n  }"; }

private:
    void begin(QByteArrayView key)
    {
        m_json += m_isFirst ? "\n    \"" : ",\n    \"";
        m_isFirst = false;
        m_json += key;
        m_json += "\" : ";
    }

    QByteArray &m_json;
    bool m_isFirst = true;
};

/// Whether the text has the shape of ISO 8601 internet date-time, whole seconds and a zone: Qt also reads
/// fractions, of minutes even, and times without a zone.
bool isWholeSecondsWithZone(QStringView text)
{
    static constexpr QStringView shape = u"0000-00-00T00:00:00";
    if (text.size() <= shape.size())
        return false;
    for (qsizetype i = 0; i < shape.size(); ++i) {
        if (shape.at(i) == u'0' ? !text.at(i).isDigit() : text.at(i) != shape.at(i))
            return false;
    }
    const QChar zone = text.at(shape.size());
    return zone == u'Z' || zone == u'+' || zone == u'-';
}

/// Reads the members of one object and remembers the first that is missing or of the wrong kind.
class ObjectReader
{
public:
    explicit ObjectReader(const QJsonObject &object) : m_object(object) {}

    QString text(QLatin1StringView key)
    {
        const QJsonValue value = m_object.value(key);
        return value.isString() ? value.toString() : refused<QString>(key);
    }
    double real(QLatin1StringView key)
    {
        const QJsonValue value = m_object.value(key);
        return value.isDouble() ? value.toDouble() : refused<double>(key);
    }
    qint64 integer(QLatin1StringView key)
    {
        const auto number = Json::wholeNumber(m_object.value(key));
        return number ? *number : refused<qint64>(key);
    }
    std::optional<QString> optionalText(QLatin1StringView key)
    {
        return isAbsent(key) ? std::nullopt : std::optional(text(key));
    }
    std::optional<qint64> optionalInteger(QLatin1StringView key)
    {
        return isAbsent(key) ? std::nullopt : std::optional(integer(key));
    }
    QUuid id(QLatin1StringView key)
    {
        const QString written = text(key);
        const QUuid id = QUuid::fromString(written);
        const bool isStandardForm =
            written.compare(id.toString(QUuid::WithoutBraces), Qt::CaseInsensitive) == 0;
        return isStandardForm ? id : refused<QUuid>(key);
    }
    QDateTime date(QLatin1StringView key)
    {
        const QString written = text(key);
        const QDateTime date = QDateTime::fromString(written, Qt::ISODate);
        if (!date.isValid() || !isWholeSecondsWithZone(written))
            return refused<QDateTime>(key);
        return date.toUTC();
    }

    const QString &refusal() const { return m_refusal; }

private:
    bool isAbsent(QLatin1StringView key) const
    {
        const QJsonValue value = m_object.value(key);
        return value.isUndefined() || value.isNull();
    }

    template <typename T>
    T refused(QLatin1StringView key)
    {
        if (m_refusal.isEmpty())
            m_refusal = u"missing or wrong \"%1\""_s.arg(key);
        return {};
    }

    const QJsonObject &m_object;
    QString m_refusal;
};

std::expected<Dictation, QString> record(const QJsonValue &value)
{
    if (!value.isObject())
        return std::unexpected(u"not an object"_s);
    const QJsonObject members = value.toObject();
    ObjectReader object(members);
    Dictation dictation{.id = object.id("id"_L1),
                        .date = object.date("date"_L1),
                        .durationSeconds = object.real("durationSeconds"_L1),
                        .wordCount = object.integer("wordCount"_L1),
                        .text = object.text("text"_L1),
                        .rawText = object.optionalText("rawText"_L1),
                        .transcribeMs = object.optionalInteger("transcribeMs"_L1),
                        .cleanupMs = object.optionalInteger("cleanupMs"_L1),
                        .audioBytes = object.optionalInteger("audioBytes"_L1),
                        .providerRaw = object.optionalText("providerRaw"_L1),
                        .transcriptionModel = object.optionalText("transcriptionModel"_L1),
                        .chatModel = object.optionalText("chatModel"_L1)};
    if (!object.refusal().isEmpty())
        return std::unexpected(object.refusal());
    return dictation;
}

} // namespace

QByteArray HistoryFile::encode(const QList<Dictation> &records)
{
    QList<QByteArray> encoded;
    encoded.reserve(records.size());
    for (const Dictation &record : records)
        encoded.append(encodeRecord(record));
    return join(encoded);
}

QByteArray HistoryFile::encodeRecord(const Dictation &record)
{
    QByteArray json;
    json.reserve(512);
    ObjectWriter object(json);
    object.ascii("id", record.id.toByteArray(QUuid::WithoutBraces).toUpper());
    object.ascii("date", isoDate(record.date));
    object.real("durationSeconds", record.durationSeconds);
    object.integer("wordCount", record.wordCount);
    object.text("text", record.text);
    object.text("rawText", record.rawText);
    object.integer("transcribeMs", record.transcribeMs);
    object.integer("cleanupMs", record.cleanupMs);
    object.integer("audioBytes", record.audioBytes);
    object.text("providerRaw", record.providerRaw);
    object.text("transcriptionModel", record.transcriptionModel);
    object.text("chatModel", record.chatModel);
    object.finish();
    return json;
}

QByteArray HistoryFile::join(const QList<QByteArray> &encodedRecords)
{
    qsizetype size = 3;
    for (const QByteArray &record : encodedRecords)
        size += record.size() + 2;
    QByteArray json;
    json.reserve(size);
    json += '[';
    bool isFirst = true;
    for (const QByteArray &record : encodedRecords) {
        json += isFirst ? "\n" : ",\n";
        isFirst = false;
        json += record;
    }
    json += "\n]";
    return json;
}

std::expected<QList<Dictation>, QString> HistoryFile::decode(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        return std::unexpected(u"%1 at byte %2"_s.arg(error.errorString()).arg(error.offset));
    if (!document.isArray())
        return std::unexpected(u"The top level is not a list."_s);
    QList<Dictation> records;
    const QJsonArray values = document.array();
    records.reserve(values.size());
    for (const QJsonValue &value : values) {
        auto read = record(value);
        if (!read)
            return std::unexpected(u"Record %1: %2."_s.arg(records.size()).arg(read.error()));
        records.append(*std::move(read));
    }
    return records;
}
