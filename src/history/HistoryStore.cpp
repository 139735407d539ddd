#include "history/HistoryStore.h"

#include "history/HistoryFile.h"
#include "platform/Clock.h"
#include "platform/Folders.h"
#include "support/AtomicFile.h"

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

HistoryStore::HistoryStore(Folders &folders, Clock &clock)
    : m_clock(clock),
      m_filePath(folders.applicationSupport() + u"/Sayvane/history.json"_s)
{
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(QFileInfo(m_filePath).path().toStdU16String()),
                                        error);
    if (error)
        qCCritical(log).noquote() << "Could not create the history folder:"
                                  << QString::fromStdString(error.message());
    load();
}

void HistoryStore::load()
{
    std::error_code error;
    const auto status = std::filesystem::status(std::filesystem::path(m_filePath.toStdU16String()), error);
    if (status.type() == std::filesystem::file_type::not_found)
        return;
    const auto unreadable = [this](const QString &reason) {
        m_savingBlocked = true;
        qCCritical(log).noquote() << "Could not read history.json, writes disabled this session:" << reason;
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
        quarantineHistoryFile();
    } else {
        m_records = *std::move(records);
        std::ranges::stable_sort(m_records, std::ranges::greater(), &Dictation::date);
    }
    publish();
}

void HistoryStore::quarantineHistoryFile()
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

void HistoryStore::save()
{
    if (m_savingBlocked)
        return;
    if (const auto saved = AtomicFile::replace(m_filePath, HistoryFile::encode(m_records)); !saved)
        qCCritical(log).noquote() << "Could not write history.json:" << saved.error();
}

void HistoryStore::append(const Dictation &dictation)
{
    m_records.prepend(dictation);
    if (m_records.size() > cap)
        m_records.resize(cap);
    publish();
    save();
}

void HistoryStore::remove(const Dictation &dictation)
{
    m_records.removeIf([&](const Dictation &record) { return record.id == dictation.id; });
    publish();
    save();
}

void HistoryStore::clear()
{
    m_records.clear();
    publish();
    save();
}

void HistoryStore::publish()
{
    m_stats = computeStats();
    Q_EMIT recordsChanged();
}
