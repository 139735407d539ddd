#include "support/FakeMicrophone.h"

#include <QFile>

#include <utility>

namespace {

class FakeRecording final : public Recording
{
public:
    FakeRecording(FakeMicrophone &microphone, const QString &path) : m_microphone(microphone), m_path(path)
    {
        QFile(m_path).open(QIODevice::WriteOnly);
    }
    ~FakeRecording() override { close(); }

    void record(std::function<void(bool)> answer) override
    {
        answerLater([this, answer] { answer(m_isRecording = m_microphone.records); });
    }
    void stop(std::function<void()> closed) override
    {
        answerLater([this, closed] {
            close();
            closed();
        });
    }
    bool isRecording() const override { return m_isRecording && !loss(); }
    std::optional<Loss> loss() const override { return m_microphone.loss; }
    qint64 heard() const override { return m_microphone.isDumb ? m_heard : ++m_heard; }
    void updateMeters() override { m_reading = m_microphone.power; }
    double averagePower(int) const override { return m_reading; }

private:
    void answerLater(const std::function<void()> &call)
    {
        m_microphone.whenAnswering([alive = std::weak_ptr(m_alive), call] {
            if (!alive.expired())
                call();
        });
    }
    void close()
    {
        if (!std::exchange(m_isRecording, false))
            return;
        if (m_microphone.leavesNoFile)
            QFile::remove(m_path);
        else
            QFile::resize(m_path, m_microphone.fileSize);
    }

    FakeMicrophone &m_microphone;
    QString m_path;
    std::shared_ptr<const bool> m_alive = std::make_shared<const bool>();
    bool m_isRecording = false;
    mutable qint64 m_heard = 0;
    double m_reading = -160;
};

} // namespace

std::expected<std::unique_ptr<Recording>, QString> FakeMicrophone::open(const QString &path, const PcmFormat &format)
{
    lastFormat = format;
    lastPath = path;
    if (!openError.isEmpty())
        return std::unexpected(openError);
    return std::make_unique<FakeRecording>(*this, path);
}

void FakeMicrophone::whenAnswering(std::function<void()> call)
{
    if (answers)
        call();
    else
        m_held.append(std::move(call));
}

void FakeMicrophone::answer()
{
    answers = true;
    for (const auto &call : std::exchange(m_held, {}))
        call();
}
