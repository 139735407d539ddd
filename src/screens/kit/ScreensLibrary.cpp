#include "screens/kit/ScreensLibrary.h"

#include "screens/kit/QuickWindowEngine.h"

WindowEngine *sayvaneMakeWindowEngine(Appearance &appearance, const Graphics &graphics)
{
    return std::make_unique<QuickWindowEngine>(appearance, graphics).release();
}
