#pragma once

#include "dictation/OverlayModel.h"

#include <QColor>
#include <QString>

/// How a tone looks.
struct ToneStyle
{
    QColor colour;
    QString icon; ///< the name of a symbol

    static ToneStyle of(OverlayTone tone);
};
