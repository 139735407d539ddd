#include "dictation/AudioRecorder.h"

#include "base/Folders.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <utility>

using namespace Qt::StringLiterals;

AudioRecorder::AudioRecorder(Microphone &microphone, const Folders &folders, const Volumes &volumes)
    : m_microphone(microphone),
      m_folders(folders),
      m_volumes(volumes)
{
}

void AudioRecorder::start(Started started)
{
    m_phase = Phase::starting;
    m_search = std::make_shared<const bool>();
    m_microphone.findInputDevice(
        [this, search = std::weak_ptr(m_search), started = std::move(started)](bool found) {
            if (search.expired())
                return;
            if (!found)
                return giveUp(FlowError::noInputDevice(), started);
            open(started);
        });
}

void AudioRecorder::open(const Started &started)
{
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const QString path = m_folders.temporary() + u'/' + Folders::recordingName(id);
    if (!hasRoom(path, m_volumes))
        return giveUp(FlowError::lowDiskSpace(), started);
    auto opened = m_microphone.open(path, format);
    if (!opened)
        return giveUp(FlowError::platform(opened.error()), started);
    m_recorder = *std::move(opened);
    m_currentPath = path;
    m_recorder->record([this, started](bool begun) {
        if (!begun)
            return giveUp(FlowError::recorderFailed(), started);
        m_phase = Phase::recording;
        started({});
    });
}

void AudioRecorder::giveUp(FlowError error, const Started &started)
{
    const Started told = started; // it may belong to the recording that goes
    if (const auto path = abandon())
        QFile::remove(*path);
    told(std::unexpected(std::move(error)));
}

void AudioRecorder::stop(Stopped stopped)
{
    if (m_phase != Phase::recording)
        return stopped(std::nullopt);
    m_phase = Phase::stopping;
    m_recorder->stop([this, stopped = std::move(stopped)] {
        const Stopped told = stopped;
        told(abandon());
    });
}

std::optional<QString> AudioRecorder::abandon()
{
    m_phase = Phase::idle;
    m_search.reset();
    m_recorder.reset();
    return std::exchange(m_currentPath, std::nullopt);
}

bool AudioRecorder::hasRoom(const QString &filePath, const Volumes &volumes)
{
    const auto capacity = volumes.availableCapacity(QFileInfo(filePath).path());
    return !capacity || *capacity >= minimumCapacity;
}
