#include "overlay/ToneStyle.h"

using namespace Qt::StringLiterals;

ToneStyle ToneStyle::of(OverlayTone tone)
{
    switch (tone) {
    case OverlayTone::warning:
        return {QColor(245, 185, 66), u"exclamationmark.triangle.fill"_s};
    case OverlayTone::failure:
        return {QColor(227, 137, 154), u"exclamationmark.circle.fill"_s};
    case OverlayTone::success:
        break;
    }
    return {QColor(255, 255, 255), u"checkmark"_s};
}
