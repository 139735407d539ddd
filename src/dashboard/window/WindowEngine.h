#pragma once

#include "dashboard/window/Theme.h"

#include <QQmlEngine>
#include <QString>
#include <QVariantMap>

#include <memory>

class Graphics;
class QQuickWindow;

/// The QML engine of the program's windows. It costs memory, so it is made for the first of them.
class WindowEngine
{
public:
    /// `graphics` decides, for the first engine of the process, how windows are drawn; Qt's own variables
    /// (QT_QUICK_BACKEND, QSG_RHI_BACKEND) come before it.
    WindowEngine(Appearance &appearance, const Graphics &graphics);
    ~WindowEngine();

    /// The window of the module's type of that name, hidden, its required properties set. A window that
    /// cannot be made is a fault of the program's own, and ends it.
    std::unique_ptr<QQuickWindow> makeWindow(const QString &typeName, const QVariantMap &properties);

    /// Lets go of what closed windows have left behind, once the program has nothing else to do.
    void tidyLater();

    Theme &theme() { return m_theme; }

private:
    Theme m_theme;
    QQmlEngine m_engine;
};
