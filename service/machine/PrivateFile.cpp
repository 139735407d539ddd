#include "service/machine/PrivateFile.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

bool writeAll(int file, std::string_view content)
{
    while (!content.empty()) {
        const ssize_t count = ::write(file, content.data(), content.size());
        if (count < 0 && errno != EINTR)
            return false;
        content.remove_prefix(count > 0 ? static_cast<size_t>(count) : 0);
    }
    return ::fsync(file) == 0;
}

} // namespace

void PrivateFile::replace(const std::filesystem::path &path, std::string_view content)
{
    const std::string fresh = path.string() + ".new";
    ::unlink(fresh.c_str());
    const int file = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    bool written = file >= 0 && writeAll(file, content);
    if (file >= 0)
        written = ::close(file) == 0 && written;
    if (!written || ::rename(fresh.c_str(), path.c_str()) != 0) {
        const std::string reason = std::strerror(errno);
        ::unlink(fresh.c_str());
        throw std::runtime_error("cannot write " + path.string() + ": " + reason);
    }
}
