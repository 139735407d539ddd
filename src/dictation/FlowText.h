#pragma once

#include "base/Clock.h"

#include <QCoreApplication>
#include <QString>

/// Small rules of a dictation's texts and figures.
struct FlowText
{
    /// An error's sentence as a detail within a notice: on one line, at most 90 characters.
    static QString shortened(const QString &description);

    /// Whole milliseconds, halves away from zero.
    static qint64 elapsedMilliseconds(Clock::Duration elapsed);

    /// The meter's level, 0 to 1, for a power in dBFS: -50 and below is silence, 0 is full.
    static double meterLevel(double averagePower);

    Q_DECLARE_TR_FUNCTIONS(FlowText)
};
