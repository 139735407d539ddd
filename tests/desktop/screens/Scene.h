#pragma once

#include "desktop/screens/Stage.h"

#include <QSize>

#include <functional>

/// One state of the windows worth looking at.
struct Scene
{
    QString name; ///< the picture's file name without ending
    DashboardSection section;
    std::function<void(Stage &)> set;        ///< before the window opens
    std::function<void(QQuickWindow &)> act; ///< on the open window
    QSize size = QSize(960, 640);
    bool dark = false;
};

/// Every scene that is pictured, in the order of the pictures.
QList<Scene> allScenes();
