#include "preferences/HotkeySpec.h"

#include "base/Json.h"
#include "base/KeyTap.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct KeyName
{
    qint64 code;
    const char *name;
};

constexpr auto names = std::to_array<KeyName>({
    {0, "A"},
    {1, "S"},
    {2, "D"},
    {3, "F"},
    {4, "H"},
    {5, "G"},
    {6, "Z"},
    {7, "X"},
    {8, "C"},
    {9, "V"},
    {11, "B"},
    {12, "Q"},
    {13, "W"},
    {14, "E"},
    {15, "R"},
    {16, "Y"},
    {17, "T"},
    {18, "1"},
    {19, "2"},
    {20, "3"},
    {21, "4"},
    {22, "6"},
    {23, "5"},
    {24, "="},
    {25, "9"},
    {26, "7"},
    {27, "-"},
    {28, "8"},
    {29, "0"},
    {30, "]"},
    {31, "O"},
    {32, "U"},
    {33, "["},
    {34, "I"},
    {35, "P"},
    {36, QT_TRANSLATE_NOOP("HotkeySpec", "Return")},
    {37, "L"},
    {38, "J"},
    {39, "'"},
    {40, "K"},
    {41, ";"},
    {42, "\\"},
    {43, ","},
    {44, "/"},
    {45, "N"},
    {46, "M"},
    {47, "."},
    {48, QT_TRANSLATE_NOOP("HotkeySpec", "Tab")},
    {49, QT_TRANSLATE_NOOP("HotkeySpec", "Space")},
    {50, "`"},
    {51, QT_TRANSLATE_NOOP("HotkeySpec", "Delete")},
    {53, QT_TRANSLATE_NOOP("HotkeySpec", "Escape")},
    {64, "F17"},
    {65, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad .")},
    {67, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad *")},
    {69, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad +")},
    {71, QT_TRANSLATE_NOOP("HotkeySpec", "Clear")},
    {75, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad /")},
    {76, QT_TRANSLATE_NOOP("HotkeySpec", "Enter")},
    {78, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad -")},
    {79, "F18"},
    {80, "F19"},
    {81, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad =")},
    {82, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 0")},
    {83, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 1")},
    {84, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 2")},
    {85, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 3")},
    {86, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 4")},
    {87, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 5")},
    {88, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 6")},
    {89, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 7")},
    {90, "F20"},
    {91, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 8")},
    {92, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 9")},
    {96, "F5"},
    {97, "F6"},
    {98, "F7"},
    {99, "F3"},
    {100, "F8"},
    {101, "F9"},
    {103, "F11"},
    {105, "F13"},
    {106, "F16"},
    {107, "F14"},
    {109, "F10"},
    {111, "F12"},
    {113, "F15"},
    {114, QT_TRANSLATE_NOOP("HotkeySpec", "Help")},
    {115, QT_TRANSLATE_NOOP("HotkeySpec", "Home")},
    {116, QT_TRANSLATE_NOOP("HotkeySpec", "Page Up")},
    {117, QT_TRANSLATE_NOOP("HotkeySpec", "Forward Delete")},
    {118, "F4"},
    {119, QT_TRANSLATE_NOOP("HotkeySpec", "End")},
    {120, "F2"},
    {121, QT_TRANSLATE_NOOP("HotkeySpec", "Page Down")},
    {122, "F1"},
    {123, "←"},
    {124, "→"},
    {125, "↓"},
    {126, "↑"},
});

struct Modifier
{
    const char *member;
    quint64 flag;
    bool HotkeySpec::*held;
};

/// In the order of the stored form.
constexpr auto modifiers = std::to_array<Modifier>({
    {"fn", KeyFlags::fn, &HotkeySpec::fn},
    {"command", KeyFlags::command, &HotkeySpec::command},
    {"option", KeyFlags::option, &HotkeySpec::option},
    {"control", KeyFlags::control, &HotkeySpec::control},
    {"shift", KeyFlags::shift, &HotkeySpec::shift},
});

QString symbols(quint64 flags)
{
    QString text;
    if (flags & KeyFlags::control)
        text += HotkeySpec::tr("⌃");
    if (flags & KeyFlags::option)
        text += HotkeySpec::tr("⌥");
    if (flags & KeyFlags::shift)
        text += HotkeySpec::tr("⇧");
    if (flags & KeyFlags::command)
        text += HotkeySpec::tr("⌘");
    return text;
}

} // namespace

HotkeySpec HotkeySpec::of(qint64 keyCode, quint64 flags)
{
    HotkeySpec spec{.keyCode = keyCode};
    for (const Modifier &modifier : modifiers)
        spec.*modifier.held = (flags & modifier.flag) != 0;
    return spec;
}

QString HotkeySpec::jsonString() const
{
    QString json = u"{\"keyCode\":%1"_s.arg(keyCode);
    for (const Modifier &modifier : modifiers)
        json +=
            u",\"%1\":%2"_s.arg(QLatin1String(modifier.member), this->*modifier.held ? u"true" : u"false");
    return json + u'}';
}

HotkeySpec HotkeySpec::decode(const std::optional<QString> &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json.value_or(QString()).toUtf8()).object();
    const auto code = Json::wholeNumber(object.value("keyCode"_L1));
    if (!code)
        return {};
    HotkeySpec spec{.keyCode = *code};
    for (const Modifier &modifier : modifiers) {
        const QJsonValue held = object.value(QLatin1String(modifier.member));
        if (!held.isBool())
            return {};
        spec.*modifier.held = held.toBool();
    }
    return spec;
}

quint64 HotkeySpec::requiredFlags() const
{
    quint64 flags = 0;
    for (const Modifier &modifier : modifiers)
        flags |= this->*modifier.held ? modifier.flag : 0;
    return flags;
}

QString HotkeySpec::displayString() const
{
    return (fn ? tr("Fn + ") : QString()) + symbols(requiredFlags()) + keyNameFor(keyCode);
}

bool HotkeySpec::isFunctionKey() const
{
    const auto found = std::ranges::find(names, keyCode, &KeyName::code);
    return found != names.end() && found->name[0] == 'F' && QChar::isDigit(char32_t(found->name[1]));
}

QString HotkeySpec::keyNameFor(qint64 keyCode)
{
    const auto found = std::ranges::find(names, keyCode, &KeyName::code);
    return found != names.end() ? tr(found->name) : tr("Key %1").arg(keyCode);
}

QString HotkeySpec::modifierDisplay(quint64 flags)
{
    const QString others = symbols(flags);
    if (!(flags & KeyFlags::fn))
        return others;
    return others.isEmpty() ? tr("Fn") : tr("Fn + ") + others;
}
