<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- What a Linux desktop says in the place of the texts of the source. What is not here is said as it stands there. -->
<TS version="2.1" language="en">
<context>
    <name>AccountClient</name>
    <message>
        <source>Mac</source>
        <translation>Linux computer</translation>
    </message>
</context>
<context>
    <name>AccountRows</name>
    <message>
        <source>Signed in, but the session could not be saved to the Keychain.</source>
        <translation>Signed in, but the session could not be saved to the keyring.</translation>
    </message>
    <message>
        <source>Unlock the login keychain, or allow the prompt, and try again. Giving up signs this Mac out on the server too.</source>
        <translation>Unlock the keyring, or allow the prompt, and try again. Giving up signs this computer out on the server too.</translation>
    </message>
    <message>
        <source>Giving up signs this Mac out on the server too.</source>
        <translation>Giving up signs this computer out on the server too.</translation>
    </message>
</context>
<context>
    <name>AccountSignIn</name>
    <message>
        <source>Couldn't save the session to the Keychain: %1</source>
        <translation>Couldn't save the session to the keyring: %1</translation>
    </message>
    <message>
        <source>Couldn't remove from Keychain: %1</source>
        <translation>Couldn't remove from the keyring: %1</translation>
    </message>
</context>
<context>
    <name>FlowController</name>
    <message>
        <source>Microphone access not granted. Check System Settings, Privacy, Microphone</source>
        <translation>Microphone access not granted. Check the desktop's sound settings</translation>
    </message>
    <message>
        <source>Copied to clipboard. Grant Accessibility to paste automatically.</source>
        <translation>Copied to clipboard. This desktop did not let Sayvane paste it.</translation>
    </message>
</context>
<context>
    <name>HotkeyRecorder</name>
    <message>
        <source>%1 on its own would be taken from every app. Hold Fn, ⌘, ⌥, ⌃ or ⇧ as well, or choose a function key.</source>
        <translation>%1 on its own would be taken from every app. Hold Super, AltGr, Alt, Ctrl or Shift as well, or choose a function key.</translation>
    </message>
</context>
<context>
    <name>HotkeySpec</name>
    <message>
        <source>Clear</source>
        <translation>Num Lock</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Backspace</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Keypad Enter</translation>
    </message>
    <message>
        <source>Fn</source>
        <translation>Super</translation>
    </message>
    <message>
        <source>Fn + </source>
        <translation>Super + </translation>
    </message>
    <message>
        <source>Forward Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Insert</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Enter</translation>
    </message>
    <message>
        <source>⌃</source>
        <translation>Ctrl + </translation>
    </message>
    <message>
        <source>⌘</source>
        <translation>AltGr + </translation>
    </message>
    <message>
        <source>⌥</source>
        <translation>Alt + </translation>
    </message>
    <message>
        <source>⇧</source>
        <translation>Shift + </translation>
    </message>
</context>
<context>
    <name>KeyRow</name>
    <message>
        <source>Waiting for the Keychain. It may ask you first.</source>
        <translation>Waiting for the keyring. It may ask you first.</translation>
    </message>
    <message>
        <source>Couldn't save to Keychain: %1</source>
        <translation>Couldn't save to the keyring: %1</translation>
    </message>
    <message>
        <source>Couldn't remove from Keychain: %1</source>
        <translation>Couldn't remove from the keyring: %1</translation>
    </message>
</context>
<context>
    <name>Keychain</name>
    <message>
        <source>Keychain error %1</source>
        <translation>Keyring error %1</translation>
    </message>
</context>
<context>
    <name>LabsAnswerPanel</name>
    <message>
        <source>Sayvane cannot bring the app you were in back to the front from here, so this also copies the answer: switch to it and press ⌘V if the paste does not land there.</source>
        <translation>Sayvane cannot bring the app you were in back to the front from here, so this also copies the answer: switch to it and press Ctrl+V if the paste does not land there.</translation>
    </message>
</context>
<context>
    <name>MenuView</name>
    <message>
        <source>⚠️ Hotkey inactive: grant Accessibility</source>
        <translation>⚠️ Shortcut inactive: see Settings</translation>
    </message>
</context>
<context>
    <name>OwnKeyRows</name>
    <message>
        <source>It is deleted from the Keychain. Dictating with %1 needs a key.</source>
        <translation>It is deleted from the keyring. Dictating with %1 needs a key.</translation>
    </message>
</context>
<context>
    <name>SettingsPage</name>
    <message>
        <source>Off by default. Sayvane lives in the menu bar, and the dashboard is always one click away under “Open Sayvane”.</source>
        <translation>Off by default. Sayvane lives in the panel, and the dashboard is always one click away under “Open Sayvane”.</translation>
    </message>
    <message>
        <source>Accessibility (hotkey + paste)</source>
        <translation>Keyboard (shortcut + paste)</translation>
    </message>
    <message>
        <source>Accessibility is the only permission the hotkey normally needs. If the shortcut still does nothing after granting it, also enable Sayvane under Input Monitoring, then quit and relaunch.</source>
        <translation>The desktop has to let Sayvane watch the shortcut and send the paste key. If the shortcut does nothing, the desktop or another program uses these keys: choose others under Shortcut, or free them in the desktop's keyboard settings.</translation>
    </message>
    <message>
        <source>Open System Settings</source>
        <translation>Open Desktop Settings</translation>
    </message>
</context>
<context>
    <name>ShortcutChoice</name>
    <message>
        <source>Recommended: System Settings → Keyboard → “Press 🌐 key to” → Do Nothing, so macOS doesn't open the emoji picker or its own dictation.</source>
        <translation>Super is the logo key. If the desktop uses the shortcut itself, free it in its keyboard settings or choose another one here.</translation>
    </message>
    <message>
        <source>Reset to Fn + Space</source>
        <translation>Reset to Super + Space</translation>
    </message>
</context>
<context>
    <name>SignedInRows</name>
    <message>
        <source>Sign out on this Mac</source>
        <translation>Sign out on this computer</translation>
    </message>
    <message>
        <source>Sign out on this Mac?</source>
        <translation>Sign out on this computer?</translation>
    </message>
    <message>
        <source>This Mac</source>
        <translation>This computer</translation>
    </message>
</context>
</TS>
