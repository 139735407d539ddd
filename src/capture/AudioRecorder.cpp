#include "capture/AudioRecorder.h"

#include "platform/Folders.h"
#include "platform/Volumes.h"

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

std::expected<void, FlowError> AudioRecorder::start()
{
    if (!m_microphone.hasInputDevice())
        return std::unexpected(FlowError::noInputDevice());
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    const QString path = m_folders.temporary() + u"/sayvane-%1.wav"_s.arg(id);
    if (!hasRoom(path, m_volumes))
        return std::unexpected(FlowError::lowDiskSpace());
    auto opened = m_microphone.open(path, format);
    if (!opened)
        return std::unexpected(FlowError::platform(opened.error()));
    auto recording = *std::move(opened);
    if (!recording->prepare() || !recording->record()) {
        recording.reset();
        QFile::remove(path);
        return std::unexpected(FlowError::recorderFailed());
    }
    m_recorder = std::move(recording);
    m_currentPath = path;
    return {};
}

std::optional<QString> AudioRecorder::stop()
{
    if (m_recorder)
        m_recorder->stop();
    m_recorder.reset();
    return std::exchange(m_currentPath, std::nullopt);
}

bool AudioRecorder::hasRoom(const QString &filePath, const Volumes &volumes)
{
    const auto capacity = volumes.availableCapacity(QFileInfo(filePath).path());
    return !capacity || *capacity >= minimumCapacity;
}
