#pragma once

#include "values/FlowState.h"

#include <QImage>
#include <QList>

/// The program's symbol in a panel.
namespace StateIcon {

/// The symbol of the state in every size that panels ask for. What colour a panel has is not known to us:
/// its own has a contrast of 3.4 and more against white and against a dark grey.
QList<QImage> of(FlowState state);

} // namespace StateIcon
