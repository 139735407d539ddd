#include "tray/StateIcon.h"

#include "app/MenuView.h"
#include "icons/IconImage.h"

#include <QColor>

namespace {

constexpr QColor colorOf(FlowState state)
{
    return state == FlowState::recording ? QColor(0xE5, 0x48, 0x4D) : QColor(0x8A, 0x8A, 0x90);
}

} // namespace

QList<QImage> StateIcon::of(FlowState state)
{
    QList<QImage> images;
    for (const int pixels : {16, 22, 24, 32, 44, 48, 64})
        images.append(IconImage::render(MenuView::symbolFor(state), pixels, colorOf(state)));
    return images;
}
