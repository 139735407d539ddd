#include "machine/sound/soundLog.h"

Q_LOGGING_CATEGORY(soundLog, "com.sayvane.app.sound")
