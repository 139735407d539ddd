#include "support/FakeMicrophone.h"

#include <QFile>

namespace {

class FakeRecording final : public Recording
{
public:
    FakeRecording(const FakeMicrophone &microphone, const QString &path)
        : m_microphone(microphone),
          m_path(path)
    {
    }
    ~FakeRecording() override { stop(); }

    bool prepare() override
    {
        QFile file(m_path);
        return file.open(QIODevice::WriteOnly) && m_microphone.prepares;
    }
    bool record() override { return m_isRecording = m_microphone.records; }
    void stop() override
    {
        if (!m_isRecording)
            return;
        m_isRecording = false;
        if (m_microphone.leavesNoFile)
            QFile::remove(m_path);
        else
            QFile::resize(m_path, m_microphone.fileSize);
    }
    bool isRecording() const override { return m_isRecording && !m_microphone.isLost; }
    void updateMeters() override { m_reading = m_microphone.power; }
    double averagePower(int) const override { return m_reading; }

private:
    const FakeMicrophone &m_microphone;
    QString m_path;
    bool m_isRecording = false;
    double m_reading = -160;
};

} // namespace

std::expected<std::unique_ptr<Recording>, QString> FakeMicrophone::open(const QString &path,
                                                                        const PcmFormat &format)
{
    lastFormat = format;
    lastPath = path;
    if (!openError.isEmpty())
        return std::unexpected(openError);
    return std::make_unique<FakeRecording>(*this, path);
}
