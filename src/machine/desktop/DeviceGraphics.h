#pragma once

#include "base/Graphics.h"

#include <QString>

/// A graphics processor is a device that renders: a DRM render node, or NVIDIA's own device.
class DeviceGraphics final : public Graphics
{
public:
    explicit DeviceGraphics(const QString &devices = QStringLiteral("/dev"));

    bool hasProcessor() const override;

private:
    QString m_devices;
};
