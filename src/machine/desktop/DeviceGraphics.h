#pragma once

#include "base/Graphics.h"

/// A graphics processor is a device that renders: a DRM render node, or NVIDIA's own device.
class DeviceGraphics final : public Graphics
{
public:
    bool hasProcessor() const override;
};
