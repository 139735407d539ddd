#pragma once

#include "platform/Microphone.h"

/// A microphone whose recordings have the size a test asks for.
class FakeMicrophone final : public Microphone
{
public:
    bool hasInputDevice() const override { return hasDevice; }
    Authorization authorization() const override { return authorized; }
    void requestAccess() override { ++accessRequests; }
    std::expected<std::unique_ptr<Recording>, QString> open(const QString &path,
                                                            const PcmFormat &format) override;

    bool hasDevice = true;
    Authorization authorized = Authorization::authorized;
    QString openError; ///< when set, no recording can be made
    bool prepares = true;
    bool records = true;
    bool leavesNoFile = false;
    bool isLost = false;     ///< the device went away while recording
    qint64 fileSize = 32044; ///< bytes of a finished recording
    double power = -25;      ///< dBFS
    int accessRequests = 0;
    PcmFormat lastFormat;
    QString lastPath;
};
