#pragma once

/// How a message of the overlay is meant.
enum class OverlayTone { success, warning, failure };
