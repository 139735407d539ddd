#pragma once

#include <QString>

/// Where this user's files belong. The folders need not exist yet, except the temporary one.
class Folders
{
public:
    virtual ~Folders() = default;

    /// A folder only this user can read, for files of the moment.
    virtual QString temporary() const = 0;

    /// Where application data belongs; the program keeps its own in a folder "Sayvane" below it.
    virtual QString applicationSupport() const = 0;
};
