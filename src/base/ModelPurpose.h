#pragma once

/// What a model is chosen for: speech to text, or editing the transcript.
enum class ModelPurpose { transcription, chat };
