#pragma once

#include "base/Volumes.h"

/// The free space that the file system reports to ordinary users. For a folder that does not exist yet
/// it is that of the nearest folder above.
class StatVolumes final : public Volumes
{
public:
    std::optional<int64_t> availableCapacity(const QString &folder) const override;
};
