#pragma once

#include "desktop/screens/Scene.h"

/// The settings form and the Labs screen.
QList<Scene> formScenes();
