#include "history/LeftRecordings.h"

#include "base/Folders.h"
#include "base/WavHeader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include <algorithm>
#include <cstdio>
#include <limits>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.recovery", QtInfoMsg)

constexpr uint32_t sampleRate = 16000;
constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

QFileInfoList recordingsIn(const QString &folder)
{
    return QDir(folder).entryInfoList({Folders::recordingName(u"*"_s)}, QDir::Files | QDir::NoSymLinks,
                                      QDir::Time);
}

qint64 soundIn(const QFileInfo &file)
{
    return std::max<qint64>(file.size() - WavHeader::size, 0) & ~qint64(WavHeader::sampleSize - 1);
}

/// A crash of the machine may leave a header that is empty or promises another length: the file's own
/// length is the truth.
bool repair(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite) || !file.setPermissions(ownerOnly))
        return false;
    const qint64 sound = std::min<qint64>(soundIn(QFileInfo(path)), std::numeric_limits<int32_t>::max());
    const QDateTime heard = file.fileTime(QFile::FileModificationTime);
    const auto header = WavHeader::of(sampleRate, static_cast<uint32_t>(sound));
    return file.write(header.data(), header.size()) == qint64(header.size()) &&
           file.resize(WavHeader::size + sound) && file.flush() &&
           file.setFileTime(heard, QFile::FileModificationTime);
}

bool makePrivate(const QString &folder)
{
    return QDir().mkpath(folder) && QFile::setPermissions(folder, ownerOnly | QFile::ExeOwner);
}

/// Also to another disk, where a copy that was cut short must not stand for the whole one.
bool move(const QString &path, const QString &target)
{
    const auto put = [](const QString &from, const QString &to) {
        return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    };
    if (put(path, target))
        return true;
    const QString part = target + u".part"_s;
    QFile::remove(part);
    return QFile::copy(path, part) && put(part, target) && QFile::remove(path);
}

} // namespace

LeftRecordings::LeftRecordings(const Folders &folders, Clock &clock) : m_folders(folders), m_clock(clock)
{
}

int LeftRecordings::takeIn()
{
    int taken = 0;
    for (const QFileInfo &file : recordingsIn(m_folders.temporary())) {
        if (soundIn(file) <= minimumSound)
            QFile::remove(file.filePath());
        else if (takeIn(file.filePath()))
            ++taken;
    }
    removeOld();
    if (taken > 0)
        qCInfo(log, "kept %d recording(s) without a transcript; see sayvane recover", taken);
    return taken;
}

bool LeftRecordings::takeIn(const QString &path)
{
    const QString kept = m_folders.keptRecordings();
    const QFileInfo file(path);
    // Repaired before it moves: a copy to another disk takes a moment, and its time with it.
    const QString target = kept + u'/' + file.fileName();
    const QDateTime heard = file.lastModified();
    if (!makePrivate(kept) || !repair(path) || !move(path, target)) {
        qCWarning(log, "A recording without a transcript could not be kept aside; it stays.");
        return false;
    }
    if (QFile moved(target); moved.open(QIODevice::ReadWrite))
        moved.setFileTime(heard, QFile::FileModificationTime);
    return true;
}

void LeftRecordings::watchAge()
{
    removeOld();
    const QList<LeftRecording> kept = all();
    if (kept.isEmpty())
        return m_timer.reset();
    const auto left = std::chrono::milliseconds(m_clock.now().msecsTo(kept.last().date)) + keptFor;
    // One that cannot be deleted is not tried again at every turn of the loop.
    m_timer = m_clock.after(std::max<Clock::Duration>(left, 1h), [this] { watchAge(); });
}

void LeftRecordings::removeOld()
{
    const QDateTime oldest = m_clock.now().addDays(-keptFor.count());
    for (const LeftRecording &recording : all()) {
        if (recording.date <= oldest)
            remove(recording);
    }
}

QList<LeftRecording> LeftRecordings::all() const
{
    QList<LeftRecording> found;
    for (const QFileInfo &file : recordingsIn(m_folders.keptRecordings()))
        found.append({.id = file.completeBaseName().sliced(Folders::recordingPrefix.size()),
                      .path = file.filePath(),
                      .date = file.lastModified().toUTC(),
                      .seconds = static_cast<double>(soundIn(file)) / (sampleRate * WavHeader::sampleSize)});
    return found;
}

std::expected<LeftRecording, QString> LeftRecordings::find(const QString &id) const
{
    QList<LeftRecording> found = all();
    found.removeIf([&](const LeftRecording &recording) {
        return id.isEmpty() || !recording.id.startsWith(id, Qt::CaseInsensitive);
    });
    if (found.size() == 1)
        return found.first();
    return std::unexpected(found.isEmpty() ? u"There is no left recording %1."_s.arg(id)
                                           : u"%1 stands for several left recordings."_s.arg(id));
}

bool LeftRecordings::remove(const LeftRecording &recording)
{
    return QFile::remove(recording.path);
}
