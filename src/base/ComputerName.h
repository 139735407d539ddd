#pragma once

#include <QString>

/// What the user calls this computer.
class ComputerName
{
public:
    virtual ~ComputerName() = default;

    /// The name as shown to people, or empty when the computer has none.
    virtual QString localizedName() const = 0;
};
