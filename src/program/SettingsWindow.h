#pragma once

#include "screens/WindowEngine.h"

#include <QObject>

#include <memory>

class Activation;
class Appearance;
class Graphics;
class SettingsForms;

/// The settings in a window of their own. Nothing of it is kept while it is closed.
class SettingsWindow final : public QObject
{
    Q_OBJECT
public:
    SettingsWindow(Activation &activation, Appearance &appearance, const Graphics &graphics,
                   WindowEngine::Maker makeEngine, SettingsForms &forms);
    ~SettingsWindow() override;

    /// Opens the window, or brings it to the front.
    void show();

    /// None while it is closed.
    QWindow *window() const { return m_window.get(); }

private:
    bool make();
    void dropIfClosed();

    Activation &m_activation;
    Appearance &m_appearance;
    const Graphics &m_graphics;
    WindowEngine::Maker m_makeEngine;
    SettingsForms &m_forms;
    std::unique_ptr<WindowEngine> m_engine;
    std::unique_ptr<QWindow> m_window;
};
