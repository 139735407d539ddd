#pragma once

#include "preferences/HotkeySpec.h"

#include <functional>

class AccountSessionStore;
class AccountSignIn;
class AccountStatus;
class Defaults;
class HotkeyRecorder;
class Keychain;
class Prefs;
class Transcriber;
struct Platform;

/// What a settings form works on. Everything outlives the forms.
struct SettingsCollaborators
{
    Platform &platform;
    Defaults &defaults;
    Prefs &prefs;
    Keychain &keychain;
    AccountSessionStore &sessions;
    AccountStatus &accountStatus;
    AccountSignIn &signIn;
    Transcriber &transcriber;
    HotkeyRecorder &recorder;
    /// Stores a shortcut and puts it in the place of the installed one.
    std::function<void(const HotkeySpec &)> updateHotkey;
};
