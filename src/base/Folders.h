#pragma once

#include <QString>

#include <cstdint>
#include <optional>

/// Where this user's files belong. The folders need not exist yet, except the temporary one.
class Folders
{
public:
    virtual ~Folders() = default;

    /// A folder only this user can read, for files of the moment.
    virtual QString temporary() const = 0;

    /// Where application data belongs; the program keeps its own in a folder "Sayvane" below it.
    virtual QString applicationSupport() const = 0;

    /// The program's own folder, and what it keeps there.
    QString own() const { return applicationSupport() + QStringLiteral("/Sayvane"); }
    QString history() const { return own() + QStringLiteral("/history.json"); }
    QString keptRecordings() const { return own() + QStringLiteral("/recordings"); }
    QString instanceLock() const { return own() + QStringLiteral("/instance.lock"); }

    /// What the name of every recording begins with; its id follows.
    static inline const QString recordingPrefix = QStringLiteral("sayvane-");
    static QString recordingName(const QString &id) { return recordingPrefix + id + QStringLiteral(".wav"); }
};

/// The disks.
class Volumes
{
public:
    virtual ~Volumes() = default;

    /// Bytes that this user can still write on the volume that holds the folder; none when unknown.
    virtual std::optional<int64_t> availableCapacity(const QString &folder) const = 0;
};
