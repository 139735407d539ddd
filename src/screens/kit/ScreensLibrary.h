#pragma once

class Appearance;
class Graphics;
class WindowEngine;

/// What the library of the screens is entered by: an engine, which is the caller's.
extern "C" WindowEngine *sayvaneMakeWindowEngine(Appearance &appearance, const Graphics &graphics);
