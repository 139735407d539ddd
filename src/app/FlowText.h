#pragma once

#include "platform/Clock.h"

#include <QString>

/// Small rules of a dictation's texts and figures.
namespace FlowText {

/// An error's sentence as a detail within a notice: on one line, at most 90 characters.
QString shortened(const QString &description);

/// Whole milliseconds, halves away from zero.
qint64 elapsedMilliseconds(Clock::Duration elapsed);

/// The meter's level, 0 to 1, for a power in dBFS: -50 and below is silence, 0 is full.
double meterLevel(double averagePower);

} // namespace FlowText
