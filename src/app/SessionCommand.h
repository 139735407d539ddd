#pragma once

#include <QByteArray>
#include <QString>

class SecretStore;

/// Puts a session of the hosted service in place without the program's windows.
class SessionCommand
{
public:
    /// Stores the token read from a script; an empty one removes the session. The text is empty on
    /// success, else what went wrong.
    static QString store(SecretStore &secrets, const QByteArray &token);
};
