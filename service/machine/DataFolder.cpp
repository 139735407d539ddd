#include "service/machine/DataFolder.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::runtime_error trouble(const std::string &what, const std::filesystem::path &path)
{
    return std::runtime_error(what + " " + path.string() + ": " + std::strerror(errno));
}

} // namespace

DataFolder::DataFolder(const std::filesystem::path &path) : m_path(std::filesystem::absolute(path))
{
    std::error_code ignored; // mkdir below tells of a missing parent
    std::filesystem::create_directories(m_path.parent_path(), ignored);
    if (::mkdir(m_path.c_str(), 0700) != 0 && errno != EEXIST)
        throw trouble("cannot make the data folder", m_path);
    const int folder = ::open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        throw trouble("cannot open the data folder", m_path);
    struct stat state
    {
    };
    const bool owned = ::fstat(folder, &state) == 0 && state.st_uid == ::geteuid();
    const bool isPrivate = owned && ((state.st_mode & 077) == 0 || ::fchmod(folder, 0700) == 0);
    ::close(folder);
    if (!owned)
        throw std::runtime_error("the data folder " + m_path.string() + " belongs to someone else");
    if (!isPrivate)
        throw trouble("cannot protect the data folder", m_path);
}

DataFolder::~DataFolder()
{
    if (m_lock >= 0)
        ::close(m_lock);
}

std::filesystem::path DataFolder::usual()
{
    const char *data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/')
        return std::filesystem::path(data) / "sayvane-service";
    const char *home = std::getenv("HOME");
    if (!home || *home != '/')
        throw std::runtime_error("there is no home folder; name a data folder with --data");
    return std::filesystem::path(home) / ".local/share/sayvane-service";
}

void DataFolder::lockForServing()
{
    const auto path = m_path / "lock";
    m_lock = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (m_lock < 0)
        throw trouble("cannot open", path);
    if (::flock(m_lock, LOCK_EX | LOCK_NB) != 0)
        throw std::runtime_error("another server uses the data folder " + m_path.string());
}
