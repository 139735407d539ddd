#pragma once

#include "base/AccessibilityTrust.h"

#include <QCoroTask>
#include <QList>

#include <stop_token>

class FlowController;
class Prefs;
class Transcriber;
struct Platform;

/// Looks at all that a dictation needs, one by one.
namespace Doctor {

struct Needs
{
    Platform &platform;
    const FlowController &flow;
    const Prefs &prefs;
    Transcriber &transcriber;
    Checkup tray; ///< how it stands
};

/// The shortcut, paste, clipboard, overlay, microphone, keyring, tray and service, in this order. Each is
/// really asked; one that does not answer costs its own limit, a minute at most for the service. After a stop
/// request nobody must read the result.
QCoro::Task<QList<Checkup>> examine(Needs needs, std::stop_token stop);

} // namespace Doctor
