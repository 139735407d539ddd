#pragma once

#include "dashboard/window/WindowEngine.h"

#include <QObject>

#include <memory>

class Appearance;
class Graphics;
class QQuickWindow;
class SettingsForms;

/// The settings in a window of their own. Nothing of it is kept while it is closed.
class SettingsWindow final : public QObject
{
    Q_OBJECT
public:
    SettingsWindow(Appearance &appearance, const Graphics &graphics, SettingsForms &forms);
    ~SettingsWindow() override;

    /// Opens the window, or brings it to the front.
    void show();

    /// None while it is closed.
    QQuickWindow *window() const { return m_window.get(); }

private:
    void make();
    void dropIfClosed();

    Appearance &m_appearance;
    const Graphics &m_graphics;
    SettingsForms &m_forms;
    std::unique_ptr<WindowEngine> m_engine;
    std::unique_ptr<QQuickWindow> m_window;
};
