#pragma once

#include "base/FlowState.h"

#include <QImage>
#include <QList>
#include <QString>

/// The program's symbol in a panel.
namespace StateIcon {

/// The name of the symbolic icon for the state, which panels draw in the colour of their text.
QString nameOf(FlowState state);

/// The same for panels that look up no names, in every size that they ask for. What colour a panel has is not
/// known to us: its own has a contrast of 3.4 and more against white and against a dark grey.
QList<QImage> of(FlowState state);

} // namespace StateIcon
