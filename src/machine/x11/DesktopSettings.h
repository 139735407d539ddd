#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>
#include <optional>

class X11Connection;

/// What the desktop's settings daemon tells every program (freedesktop.org, XSETTINGS 0.5).
class DesktopSettings
{
public:
    /// What it tells now.
    static DesktopSettings read(X11Connection &connection);
    /// From the bytes of the property; damaged ones hold what stands before the damage.
    explicit DesktopSettings(const QByteArray &property) : m_property(property) {}

    std::optional<int32_t> integer(QByteArrayView name) const;

private:
    QByteArray m_property;
};
