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
        m_encoded.resize(m_records.size());
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
    for (qsizetype i = 0; i < m_records.size(); ++i) {
        if (m_encoded.at(i).isEmpty())
            m_encoded[i] = HistoryFile::encodeRecord(m_records.at(i));
    }
    if (const auto saved = AtomicFile::replace(m_filePath, HistoryFile::join(m_encoded)); !saved)
        qCCritical(log).noquote() << "Could not write history.json:" << saved.error();
}

void HistoryStore::append(const Dictation &dictation)
{
    m_records.prepend(dictation);
    m_encoded.prepend({});
    if (m_records.size() > cap) {
        m_records.resize(cap);
        m_encoded.resize(cap);
    }
    publish();
    save();
}

void HistoryStore::remove(const Dictation &dictation)
{
    const QUuid id = dictation.id; // the record given may be one of ours
    for (qsizetype i = m_records.size() - 1; i >= 0; --i) {
        if (m_records.at(i).id == id) {
            m_records.removeAt(i);
            m_encoded.removeAt(i);
        }
    }
    publish();
    save();
}

void HistoryStore::clear()
{
    m_records.clear();
    m_encoded.clear();
    publish();
    save();
}

void HistoryStore::publish()
{
    m_stats = computeStats();
    Q_EMIT recordsChanged();
}
