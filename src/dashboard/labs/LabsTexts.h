#pragma once

#include "labs/LabsMode.h"

#include <QString>

/// What the Labs screen says in each mode.
namespace LabsTexts {

QString hint(LabsMode mode);
QString promptLabel(LabsMode mode);
/// Empty in the mode that takes no text besides the prompt.
QString contextLabel(LabsMode mode);

/// Who answered, by the service's names for assistant and model.
QString heading(const QString &provider, const QString &model);

} // namespace LabsTexts
