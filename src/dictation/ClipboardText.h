#pragma once

#include "base/Pasteboard.h"

#include <QList>
#include <QString>

/// The plain text among the formats that something on the clipboard was offered as.
namespace ClipboardText {

/// The text of the first item that has one; empty when none does.
QString of(const QList<PasteboardItem> &items);

} // namespace ClipboardText
