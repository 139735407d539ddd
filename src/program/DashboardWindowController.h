#pragma once

#include "screens/WindowEngine.h"

#include <QObject>
#include <QSize>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

class Activation;
class Appearance;
class Graphics;
class QWindow;

/// Tells when any window of the program is about to close, while it is still visible.
class WindowCloseObserver final : public QObject
{
    Q_OBJECT
public:
    explicit WindowCloseObserver(std::function<void(QWindow *)> closing);
    ~WindowCloseObserver() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::function<void(QWindow *)> m_closing;
};

/// The program's one ordinary window: made when it is first shown, hidden when it is closed.
class DashboardWindowController
{
public:
    struct Needs
    {
        Activation &activation;
        Appearance &appearance;
        Graphics &graphics;
        WindowEngine::Maker makeEngine;
        /// The models of the screens by the window's property names; asked for when the window is made.
        std::function<QVariantMap()> models;
        /// The window is about to be shown, or closes.
        std::function<void(bool)> shownChanged;
        /// Gives windows their editing commands.
        std::function<void()> installMainMenu;
        /// The window closes: no shortcut is being chosen any more.
        std::function<void()> cancelShortcutCapture;
    };
    explicit DashboardWindowController(Needs needs);
    ~DashboardWindowController();

    /// Opens the window, or brings it to the front from wherever it is.
    void show();

    /// None before it is first shown.
    QWindow *window() const { return m_window.get(); }

    /// Whether another ordinary window than this is showing: one with a title that can become the main
    /// one. Panels, menus and the like are none.
    static bool hasRegular(const QWindow *besides);

private:
    bool make();
    void closing(const QWindow *window);

    Needs m_needs;
    std::unique_ptr<WindowEngine> m_engine;
    std::unique_ptr<QWindow> m_window;
    QSize m_leastSize; // where the screen has room for it
    std::optional<WindowCloseObserver> m_closeObserver;
};
