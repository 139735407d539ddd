#pragma once

#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountSessionStore.h"
#include "cloud/account/AccountSignIn.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/account/Credentials.h"
#include "dictation/HotkeyRecorder.h"
#include "preferences/Defaults.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "screens/settings/SettingsView.h"
#include "cloud/speech/Transcriber.h"
#include "support/FakeMachine.h"

#include <memory>

/// A settings form over a fake machine.
class SettingsFixture
{
public:
    SettingsFixture() { prefs.registerDefaults(keychain); }

    /// A form that somebody looks at, made when it is first needed.
    SettingsView &form()
    {
        if (!m_form) {
            m_form = std::make_unique<SettingsView>(collaborators);
            m_form->setShown(true);
        }
        return *m_form;
    }
    void closeForm() { m_form.reset(); }
    void choose(const QString &provider) { form().setProviderSelection(provider); }
    QString stored(const QString &key) const { return machine.defaults.values.value(key).toString(); }
    QString keyIn(const QString &account) const { return QString::fromUtf8(machine.secrets.items.value(account)); }

    FakeMachine machine;
    Keychain keychain{machine.secrets};
    Defaults defaults{machine.defaults};
    Prefs prefs{defaults, QStringLiteral("https://service.test")};
    AccountSessionStore sessions{keychain};
    AccountStatus status{sessions, prefs};
    Credentials credentials{keychain, sessions};
    AccountClient client{{prefs, sessions, status, machine.http, machine.clock}};
    AccountSignIn signIn{{client, sessions, status, keychain, machine.computerName, machine.clock}};
    Transcriber transcriber{{prefs, credentials, sessions, status, machine.http, machine.clock}};
    HotkeySpec installed;
    std::function<void(const HotkeySpec &)> update = [this](const HotkeySpec &spec) {
        installed = spec;
        defaults.set(PrefsKey::hotkeySpec, spec.jsonString());
    };
    HotkeyRecorder recorder{machine.localKeys, [] { return nullptr; }, update};
    SettingsCollaborators collaborators{machine.platform, defaults, prefs,       keychain, sessions,
                                        status,           signIn,   transcriber, recorder, update};

private:
    std::unique_ptr<SettingsView> m_form;
};
