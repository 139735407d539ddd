#pragma once

#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountSession.h"
#include "cloud/account/AccountSignIn.h"
#include "cloud/account/AccountStatus.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "support/FakeMachine.h"

#include <memory>

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
        QByteArray line = request.method + ' ' + request.url.path().toUtf8() + " -";
        for (const auto &[name, value] : request.headers) {
            if (name == "Authorization")
                line.replace(line.size() - 1, 1, QByteArray(value).replace("Bearer ", ""));
        }
        return QString::fromUtf8(line + ' ' + request.body);
    }

    FakeMachine machine;
    Prefs prefs{machine.defaults, QStringLiteral("https://service.test")};
    Keychain keychain{machine.secrets};
    AccountSessionStore sessions{keychain};
    AccountStatus account{sessions, prefs};
    AccountClient client{{prefs, sessions, account, machine.http, machine.clock}};
    std::unique_ptr<AccountSignIn> signInModel = std::make_unique<AccountSignIn>(
        AccountSignIn::Collaborators{client, sessions, account, keychain, machine.computerName, machine.clock});
};
