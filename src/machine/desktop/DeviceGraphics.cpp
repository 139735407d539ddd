#include "machine/desktop/DeviceGraphics.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

bool DeviceGraphics::hasProcessor() const
{
    const QFileInfoList nodes =
        QDir(u"/dev/dri"_s).entryInfoList({u"renderD*"_s}, QDir::Files | QDir::System);
    return std::ranges::any_of(nodes, [](const QFileInfo &node) { return node.isWritable(); }) ||
           QFileInfo(u"/dev/nvidiactl"_s).isWritable();
}
