#pragma once

#include "base/Microphone.h"

#include <QTest>

#include <optional>

/// The answers that come later, waited for by a test.
namespace Awaited {

inline constexpr int limit = 5000; // ms

inline bool inputDevice(Microphone &microphone)
{
    std::optional<bool> found;
    microphone.findInputDevice([&found](bool isFound) { found = isFound; });
    return QTest::qWaitFor([&found] { return found.has_value(); }, limit) && *found;
}

inline bool record(Recording &recording)
{
    std::optional<bool> begun;
    recording.record([&begun](bool isBegun) { begun = isBegun; });
    return QTest::qWaitFor([&begun] { return begun.has_value(); }, limit) && *begun;
}

inline bool stop(Recording &recording)
{
    bool isClosed = false;
    recording.stop([&isClosed] { isClosed = true; });
    return QTest::qWaitFor([&isClosed] { return isClosed; }, limit);
}

} // namespace Awaited
