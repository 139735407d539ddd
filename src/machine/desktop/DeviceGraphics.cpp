#include "machine/desktop/DeviceGraphics.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

DeviceGraphics::DeviceGraphics(const QString &devices) : m_devices(devices)
{
}

bool DeviceGraphics::hasProcessor() const
{
    const QFileInfoList nodes =
        QDir(m_devices + u"/dri"_s).entryInfoList({u"renderD*"_s}, QDir::Files | QDir::System);
    return std::ranges::any_of(nodes, [](const QFileInfo &node) { return node.isWritable(); }) ||
           QFileInfo(m_devices + u"/nvidiactl"_s).isWritable();
}
