#include "dashboard/window/ScreensLibrary.h"

#include "dashboard/window/QuickWindowEngine.h"

WindowEngine *sayvaneMakeWindowEngine(Appearance &appearance, const Graphics &graphics)
{
    return std::make_unique<QuickWindowEngine>(appearance, graphics).release();
}
