#include "app/ProfileLock.h"

#include "platform/Folders.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

QString lockPath(const Folders &folders)
{
    const QString folder = folders.applicationSupport() + u"/Sayvane"_s;
    QDir().mkpath(folder);
    return folder + u"/instance.lock"_s;
}

} // namespace

ProfileLock::ProfileLock(const Folders &folders) : m_file(lockPath(folders))
{
    m_file.setStaleLockTime(0); // only the death of its owner frees it
}

bool ProfileLock::tryLock(std::chrono::milliseconds limit)
{
    return m_file.tryLock(static_cast<int>(limit.count()));
}

QString ProfileLock::objection() const
{
    if (isTaken())
        return u"Another Sayvane that cannot be reached from here is at work. Try again when it has ended."_s;
    return u"The folder %1 cannot be written."_s.arg(QFileInfo(m_file.fileName()).path());
}
