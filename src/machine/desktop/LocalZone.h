#pragma once

#include <QByteArray>
#include <QTimeZone>

#include <sys/stat.h>

/// Where the user is, by the rules of the C library.
///
/// Qt knows zones by name and by a complete rule. The C library, and with it every other program of the
/// desktop, also takes the path of a zone's file, an offset alone, a rule without dates, and goes by UTC
/// where there is nothing at all. What Qt calls the system's zone is used where both say the same.
class LocalZone
{
public:
    /// Always valid. Follows $TZ and /etc/localtime.
    const QTimeZone &current();

private:
    QTimeZone m_zone;
    QByteArray m_variable; // what the zone was made of
    struct stat m_file = {};
};
