#pragma once

#include <QString>

/// A library of the program's own that is loaded when it is first needed, and stays. Its file is held open
/// from the beginning: when an update replaces it while the program runs, the one that belongs to the running
/// program is still the one that is loaded.
class HeldLibrary
{
public:
    explicit HeldLibrary(const QString &path);
    ~HeldLibrary();
    Q_DISABLE_COPY_MOVE(HeldLibrary)

    /// What the library exports under that name; ends the program where it is not to be had, which is a
    /// fault of the installation.
    void *symbol(const char *name);

private:
    QString m_path;
    int m_file;
    void *m_loaded = nullptr;
};
