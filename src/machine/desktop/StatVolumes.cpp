#include "machine/desktop/StatVolumes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <limits>

#include <cerrno>
#include <sys/statvfs.h>

std::optional<int64_t> StatVolumes::availableCapacity(const QString &folder) const
{
    if (folder.isEmpty())
        return std::nullopt;
    QString path = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    struct statvfs volume = {};
    while (statvfs(QFile::encodeName(path).constData(), &volume) != 0) {
        const QString above = QFileInfo(path).path();
        if (errno == EINTR)
            continue;
        if (errno != ENOENT || above == path)
            return std::nullopt;
        path = above;
    }
    int64_t bytes = 0;
    if (__builtin_mul_overflow(volume.f_bavail, volume.f_frsize, &bytes))
        return std::numeric_limits<int64_t>::max();
    return bytes;
}
