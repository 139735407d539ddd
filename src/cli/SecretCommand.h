#pragma once

#include <QByteArray>
#include <QString>

class SecretStore;

/// Puts a key or a session in place without the program's windows.
class SecretCommand
{
public:
    /// Stores what a script or a person gave for "groq_api_key", "openai_api_key" or "sayvane_session",
    /// trimmed; nothing removes it. The text is empty on success, else what went wrong.
    static QString store(SecretStore &secrets, const QString &account, const QByteArray &secret);

    /// As `store`, from standard input; gives the exit status.
    static int run(SecretStore &secrets, const QString &account);
};
