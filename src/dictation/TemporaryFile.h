#pragma once

#include <QFile>
#include <QString>

/// A file that is deleted with this object unless it is kept; that it cannot be deleted is nobody's error.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString &path) : m_path(path) {}
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile() { remove(); }

    void remove()
    {
        if (!m_path.isEmpty())
            QFile::remove(m_path);
        m_path.clear();
    }

    const QString &path() const { return m_path; }

    void keep() { m_path.clear(); }

private:
    QString m_path;
};
