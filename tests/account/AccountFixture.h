#pragma once

#include "account/AccountClient.h"
#include "account/AccountSessionStore.h"
#include "account/AccountSignIn.h"
#include "account/AccountStatus.h"
#include "settings/Defaults.h"
#include "settings/Keychain.h"
#include "settings/Prefs.h"
#include "support/FakeMachine.h"

#include <QJsonDocument>

/// The account's objects over a fake machine on which nobody is signed in.
class AccountFixture
{
public:
    /// Someone signed in earlier, and the token is stored.
    void signIn(const QString &token)
    {
        sessions.save(token);
        account.adopt({.token = token, .email = QStringLiteral("a@b.test"), .expiresAt = {}});
    }
    /// The last request as "METHOD path token body".
    QString sent() const
    {
        const HttpRequest &request = machine.http.requests.last();
        QString token = QStringLiteral("-");
        for (const auto &[name, value] : request.headers) {
            if (name == "Authorization")
                token = QString::fromUtf8(value).remove(QStringLiteral("Bearer "));
        }
        return QStringList{QString::fromUtf8(request.method), request.url.path(), token,
                           QString::fromUtf8(request.body)}
            .join(u' ');
    }

    FakeMachine machine;
    Defaults defaults{machine.defaults};
    Prefs prefs{defaults, QStringLiteral("https://service.test")};
    Keychain keychain{machine.secrets};
    AccountSessionStore sessions{keychain};
    AccountStatus account{sessions, prefs};
    AccountClient client{{prefs, sessions, account, machine.http, machine.clock}};
    AccountSignIn signInModel{{client, sessions, account, keychain, machine.computerName, machine.clock}};
};
