#pragma once

#include <QFile>
#include <QString>

/// A file that is deleted with this object; that it cannot be deleted is nobody's error.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString &path) : m_path(path) {}
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile() { QFile::remove(m_path); }

private:
    QString m_path;
};
