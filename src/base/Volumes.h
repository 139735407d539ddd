#pragma once

#include <QString>

#include <cstdint>
#include <optional>

/// The disks.
class Volumes
{
public:
    virtual ~Volumes() = default;

    /// Bytes that this user can still write on the volume that holds the folder; none when unknown.
    virtual std::optional<int64_t> availableCapacity(const QString &folder) const = 0;
};
