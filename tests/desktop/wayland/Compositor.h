#pragma once

#include <QByteArray>
#include <QProcess>
#include <QTemporaryDir>

/// A Wayland desktop without a screen: sway, as another user than the super-user, whom it refuses.
class Compositor
{
public:
    /// Whether it runs X11 programs too.
    explicit Compositor(bool hasX11);
    ~Compositor();

    /// Why there is no desktop; empty when there is one.
    const QByteArray &objection() const { return m_objection; }
    /// What WAYLAND_DISPLAY and DISPLAY are there.
    const QByteArray &display() const { return m_display; }
    const QByteArray &x11Display() const { return m_x11Display; }

private:
    QTemporaryDir m_folder;
    QProcess m_sway;
    QByteArray m_display;
    QByteArray m_x11Display;
    QByteArray m_objection;
};
