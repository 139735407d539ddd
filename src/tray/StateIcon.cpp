#include "tray/StateIcon.h"

#include "icons/IconImage.h"
#include "tray/MenuView.h"

#include <QColor>

using namespace Qt::StringLiterals;

namespace {

constexpr QColor colorOf(FlowState state)
{
    return state == FlowState::recording ? QColor(0xE5, 0x48, 0x4D) : QColor(0x8A, 0x8A, 0x90);
}

} // namespace

QString StateIcon::nameOf(FlowState state)
{
    switch (state) {
    case FlowState::idle:
        return u"app.sayvane.Sayvane-symbolic"_s;
    case FlowState::recording:
        return u"app.sayvane.Sayvane-recording-symbolic"_s;
    case FlowState::processing:
        return u"app.sayvane.Sayvane-processing-symbolic"_s;
    }
    Q_UNREACHABLE();
}

QList<QImage> StateIcon::of(FlowState state)
{
    QList<QImage> images;
    for (const int pixels : {16, 22, 24, 32, 44, 48, 64})
        images.append(IconImage::render(MenuView::symbolFor(state), pixels, colorOf(state)));
    return images;
}
