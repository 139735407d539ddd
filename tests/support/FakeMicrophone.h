#pragma once

#include "base/Microphone.h"

#include <QList>

/// A microphone whose recordings have the size a test asks for.
class FakeMicrophone final : public Microphone
{
public:
    void findInputDevice(std::function<void(bool)> answer) override
    {
        whenAnswering([this, answer] { answer(hasDevice); });
    }
    Authorization authorization() const override { return authorized; }
    void requestAccess() override { ++accessRequests; }
    std::expected<std::unique_ptr<Recording>, QString> open(const QString &path, const PcmFormat &format) override;

    /// Gives the answers that were held back, and from now on each at once.
    void answer();
    void whenAnswering(std::function<void()> call);

    bool answers = true; ///< at once; else when `answer` is called, as for a server that hangs
    bool hasDevice = true;
    Authorization authorized = Authorization::authorized;
    QString openError; ///< when set, no recording can be made
    bool records = true;
    bool leavesNoFile = false;
    std::optional<Recording::Loss> loss; ///< what ended it while recording
    bool isDumb = false;                 ///< it seems to record, but no samples come
    qint64 fileSize = 32044;             ///< bytes of a finished recording
    double power = -25;                  ///< dBFS
    int accessRequests = 0;
    PcmFormat lastFormat;
    QString lastPath;

private:
    QList<std::function<void()>> m_held;
};
