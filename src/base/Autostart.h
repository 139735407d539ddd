#pragma once

#include <QString>

#include <expected>

/// Whether the desktop starts the program when this user logs in.
class Autostart
{
public:
    virtual ~Autostart() = default;

    virtual bool isOn() const = 0;
    /// The error is the system's own words.
    virtual std::expected<void, QString> set(bool isOn) = 0;
};
