#include "base/AtomicFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace {

/// An open file or folder, closed with this object.
class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }

private:
    int m_number;
};

bool writeAll(int file, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t written = ::write(file, bytes.constData() + done, bytes.size() - done);
        if (written < 0 && errno != EINTR)
            return false;
        done += std::max<ssize_t>(written, 0);
    }
    return true;
}

/// Makes the new name in the folder last. A file system that cannot do this for folders does it by itself.
bool syncFolder(const QByteArray &path)
{
    const Descriptor folder(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return !folder.isOpen() || ::fsync(folder.number()) == 0 || errno == EINVAL;
}

/// Where the bytes belong: a link stays one, also when it leads nowhere yet.
QString behindLinks(QString path)
{
    constexpr int most = 40; // as the kernel follows
    for (int i = 0; i < most && QFileInfo(path).isSymLink(); ++i)
        path = QFileInfo(path).symLinkTarget();
    return path;
}

} // namespace

// QSaveFile takes the new file for good although its sync has failed; then the old one is gone for nothing.
std::expected<void, QString> AtomicFile::replace(const QString &path, const QByteArray &bytes)
{
    const QString target = behindLinks(path);
    const auto failure = [] {
        return std::unexpected(QString::fromStdString(std::generic_category().message(errno)));
    };
    QByteArray temporary = QFile::encodeName(target) + ".XXXXXX";
    const Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC)); // for the user alone
    if (!file.isOpen())
        return failure();
    if (!writeAll(file.number(), bytes) || ::fdatasync(file.number()) != 0 ||
        ::rename(temporary.constData(), QFile::encodeName(target).constData()) != 0) {
        auto failed = failure();
        ::unlink(temporary.constData());
        return failed;
    }
    if (!syncFolder(QFile::encodeName(QFileInfo(target).path())))
        return failure();
    return {};
}
