#pragma once

#include "base/FlowState.h"

#include <QString>

#include <functional>

/// Speaking a prompt instead of typing it, as the flow controller offers it.
struct PromptDictation
{
    std::function<FlowState()> state;
    /// Records a dictation whose text goes to the callback; only when idle.
    std::function<void(std::function<void(const QString &)> into)> captureNextTranscript;
    /// Ends the recording and sends it on its way.
    std::function<void()> finishRecording;
};
