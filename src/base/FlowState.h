#pragma once

/// Where a dictation is.
enum class FlowState { idle, recording, processing };
