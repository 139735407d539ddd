#include "support/AtomicFile.h"

#include <QFile>
#include <QSaveFile>

std::expected<void, QString> AtomicFile::replace(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    // commit() does not notice what flush() does: that the disk took only a part.
    const bool replaced = file.open(QIODevice::WriteOnly) &&
                          file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
                          file.write(bytes) == bytes.size() && file.flush() && file.commit();
    if (!replaced)
        return std::unexpected(file.errorString());
    return {};
}
