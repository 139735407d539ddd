#include "history/HistoryDisk.h"

#include "base/AtomicFile.h"
#include "base/Clock.h"
#include "history/HistoryFile.h"

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include <algorithm>
#include <filesystem>
#include <system_error>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.history", QtInfoMsg)

} // namespace

QList<Dictation> HistoryDisk::load()
{
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(QFileInfo(m_filePath).path().toStdU16String()),
                                        error);
    if (error)
        qCCritical(log).noquote() << "Could not create the history folder:"
                                  << QString::fromStdString(error.message());
    const auto status = std::filesystem::status(std::filesystem::path(m_filePath.toStdU16String()), error);
    if (status.type() == std::filesystem::file_type::not_found)
        return {};
    const auto unreadable = [this](const QString &reason) {
        m_savingBlocked = true;
        qCCritical(log).noquote() << "Could not read history.json, writes disabled this session:" << reason;
        return QList<Dictation>();
    };
    QFile file(m_filePath);
    if (!file.open(QIODevice::ReadOnly))
        return unreadable(file.errorString());
    const QByteArray json = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return unreadable(file.errorString());
    file.close();

    auto records = HistoryFile::decode(json);
    if (!records) {
        qCCritical(log).noquote() << "history.json could not be decoded:" << records.error();
        quarantine();
        return {};
    }
    std::ranges::stable_sort(*records, std::ranges::greater(), &Dictation::date);
    return *std::move(records);
}

void HistoryDisk::quarantine()
{
    const QString stamp = m_clock.now().toUTC().toString(u"yyyy-MM-dd'T'HHmmss'Z'");
    const QString name = u"history-corrupt-%1.json"_s.arg(stamp);
    QFile file(m_filePath);
    if (file.rename(QFileInfo(m_filePath).path() + u'/' + name)) {
        qCInfo(log).noquote() << "Moved the unreadable history aside to" << name;
        return;
    }
    m_savingBlocked = true;
    qCCritical(log).noquote() << "Could not move the unreadable history aside, writes disabled this session:"
                              << file.errorString();
}

bool HistoryDisk::save(const QList<Dictation> &records)
{
    if (m_savingBlocked)
        return false;
    encode(records);
    const auto saved = AtomicFile::replace(m_filePath, HistoryFile::join(m_encoded));
    if (!saved)
        qCCritical(log).noquote() << "Could not write history.json:" << saved.error();
    return saved.has_value();
}

// A record never changes, and those that stay keep their order.
void HistoryDisk::encode(const QList<Dictation> &records)
{
    QList<QByteArray> encoded;
    encoded.reserve(records.size());
    qsizetype next = 0;
    for (const Dictation &record : records) {
        const qsizetype found = m_saved.indexOf(record, next);
        encoded.append(found < 0 ? HistoryFile::encodeRecord(record) : m_encoded.at(found));
        next = found < 0 ? next : found + 1;
    }
    m_saved = records;
    m_encoded = std::move(encoded);
}
