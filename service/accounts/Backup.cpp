#include "service/accounts/Backup.h"

#include "service/accounts/Database.h"
#include "service/accounts/Statement.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <unistd.h>

void Backup::write(const std::filesystem::path &database, const std::filesystem::path &copy)
{
    if (!std::filesystem::exists(database))
        throw std::runtime_error("there is no database at " + database.string());
    const std::string fresh = copy.string() + ".new";
    ::unlink(fresh.c_str());
    // The database library makes files that others may read, but writes into an empty one that is there.
    const int file = ::open(fresh.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    bool written = file >= 0;
    if (written) {
        try {
            Database(database).prepare("VACUUM INTO ?").bind(fresh).step();
        } catch (...) {
            ::close(file);
            ::unlink(fresh.c_str());
            throw;
        }
        written = ::fsync(file) == 0;
        ::close(file);
    }
    if (!written || ::rename(fresh.c_str(), copy.c_str()) != 0) {
        const std::string reason = std::strerror(errno);
        ::unlink(fresh.c_str());
        throw std::runtime_error("cannot write " + copy.string() + ": " + reason);
    }
}
