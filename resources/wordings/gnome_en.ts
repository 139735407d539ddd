<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- What reads otherwise again in a GNOME session, where Fn is played by Ctrl and the logo key together. -->
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>HotkeySpec</name>
    <message>
        <source>Fn</source>
        <translation>Ctrl + Super</translation>
    </message>
    <message>
        <source>Fn + </source>
        <translation>Ctrl + Super + </translation>
    </message>
</context>
<context>
    <name>ShortcutChoice</name>
    <message>
        <source>Recommended: System Settings → Keyboard → “Press 🌐 key to” → Do Nothing, so macOS doesn't open the emoji picker or its own dictation.</source>
        <translation>GNOME keeps what is pressed with Super alone, the logo key, to itself: hold Ctrl as well.</translation>
    </message>
    <message>
        <source>Reset to Fn + Space</source>
        <translation>Reset to Ctrl + Super + Space</translation>
    </message>
</context>
</TS>
