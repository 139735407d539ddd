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

    /// Whether there is such a file.
    bool isThere() const { return m_file >= 0; }

    /// What the library exports under that name. None, with a word in the log, where it cannot be loaded: the
    /// libraries that it needs in turn may have been replaced since the program was started.
    void *symbol(const char *name);

private:
    QString m_path;
    int m_file;
    void *m_loaded = nullptr;
};
