#pragma once

#include "cloud/labs/LabsMode.h"

#include <QCoreApplication>
#include <QString>

/// What the Labs screen says in each mode.
struct LabsTexts
{
    static QString hint(LabsMode mode);
    static QString promptLabel(LabsMode mode);
    /// Empty in the mode that takes no text besides the prompt.
    static QString contextLabel(LabsMode mode);

    /// Who answered, by the service's names for assistant and model.
    static QString heading(const QString &provider, const QString &model);

    Q_DECLARE_TR_FUNCTIONS(LabsTexts)
};
