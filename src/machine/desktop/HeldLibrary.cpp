#include "machine/desktop/HeldLibrary.h"

#include <QFile>

#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

HeldLibrary::HeldLibrary(const QString &path)
    : m_path(path),
      m_file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC))
{
}

HeldLibrary::~HeldLibrary()
{
    if (m_file >= 0)
        ::close(m_file);
}

void *HeldLibrary::symbol(const char *name)
{
    if (!m_loaded)
        m_loaded = ::dlopen(("/proc/self/fd/" + std::to_string(m_file)).c_str(), RTLD_NOW);
    void *const found = m_loaded ? ::dlsym(m_loaded, name) : nullptr;
    if (!found)
        qCritical("%s cannot be used: %s", qPrintable(m_path), ::dlerror());
    return found;
}
