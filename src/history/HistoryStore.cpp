#include "history/HistoryStore.h"

#include "base/Background.h"
#include "base/Clock.h"
#include "base/Folders.h"

#include <QFile>

#include <utility>

using namespace Qt::StringLiterals;

HistoryStore::HistoryStore(Folders &folders, Clock &clock, Background &background)
    : m_clock(clock),
      m_background(background),
      m_disk(folders.history(), clock)
{
    m_background.run(
        *this, [this] { m_loaded = m_disk.load(); }, [this] { adopt(); });
}

HistoryStore::~HistoryStore()
{
    m_background.finish();
    if (m_early.isEmpty())
        return;
    blockSignals(true);
    adopt();
    m_background.finish();
}

void HistoryStore::adopt()
{
    m_records = std::move(m_loaded);
    m_isAdopted = true;
    publish();
    for (const std::function<void()> &change : std::exchange(m_early, {}))
        change();
}

void HistoryStore::change(std::function<void()> change)
{
    if (m_isAdopted)
        change();
    else
        m_early.append(std::move(change));
}

void HistoryStore::save(const QString &recording, const std::function<void()> &settled)
{
    const auto write = [this, records = m_records, recording] {
        if (m_disk.save(records) && !recording.isEmpty())
            QFile::remove(recording);
    };
    m_background.run(*this, write, settled);
}

void HistoryStore::append(const Dictation &dictation, const QString &recording,
                          const std::function<void()> &settled)
{
    change([this, dictation, recording, settled] {
        m_records.prepend(dictation);
        if (m_records.size() > cap)
            m_records.resize(cap);
        save(recording, settled);
        publish();
    });
}

void HistoryStore::remove(const Dictation &dictation)
{
    change([this, id = dictation.id] {
        m_records.removeIf([&](const Dictation &record) { return record.id == id; });
        save();
        publish();
    });
}

void HistoryStore::clear()
{
    change([this] {
        m_records.clear();
        save();
        publish();
    });
}

void HistoryStore::publish()
{
    m_stats = computeStats();
    Q_EMIT recordsChanged();
}
