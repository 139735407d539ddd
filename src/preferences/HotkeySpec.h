#pragma once

#include <QCoreApplication>
#include <QString>
#include <QtGlobal>

#include <optional>

/// The global dictation shortcut: one key by its physical position, and the exact modifiers held with it.
struct HotkeySpec
{
    qint64 keyCode = 49; ///< virtual key code of the ANSI layout; 49 is Space
    bool fn = true;
    bool command = false;
    bool option = false;
    bool control = false;
    bool shift = false;

    bool operator==(const HotkeySpec &) const = default;

    /// The shortcut of a key with the modifiers held, as `KeyFlags`.
    static HotkeySpec of(qint64 keyCode, quint64 flags);

    /// The stored form: one object with the six members in the order of the fields.
    QString jsonString() const;

    /// Reads the stored form; the default shortcut when it is absent, or any member is missing or wrong.
    static HotkeySpec decode(const std::optional<QString> &json);

    /// The modifiers as `KeyFlags` bits.
    quint64 requiredFlags() const;

    /// What people read, such as "Fn + Space" or "⇧⌘D".
    QString displayString() const;

    /// Whether it is one of F1 to F20.
    bool isFunctionKey() const;

    /// What people call a key.
    static QString keyNameFor(qint64 keyCode);

    /// The modifiers held while a shortcut is being chosen; empty when there are none.
    static QString modifierDisplay(quint64 flags);

    Q_DECLARE_TR_FUNCTIONS(HotkeySpec)
};
