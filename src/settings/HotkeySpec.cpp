#include "settings/HotkeySpec.h"

#include "platform/KeyTap.h"
#include "support/Json.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct KeyName
{
    qint64 code;
    QStringView name;
};

constexpr auto names = std::to_array<KeyName>({
    {0, u"A"},
    {1, u"S"},
    {2, u"D"},
    {3, u"F"},
    {4, u"H"},
    {5, u"G"},
    {6, u"Z"},
    {7, u"X"},
    {8, u"C"},
    {9, u"V"},
    {11, u"B"},
    {12, u"Q"},
    {13, u"W"},
    {14, u"E"},
    {15, u"R"},
    {16, u"Y"},
    {17, u"T"},
    {18, u"1"},
    {19, u"2"},
    {20, u"3"},
    {21, u"4"},
    {22, u"6"},
    {23, u"5"},
    {24, u"="},
    {25, u"9"},
    {26, u"7"},
    {27, u"-"},
    {28, u"8"},
    {29, u"0"},
    {30, u"]"},
    {31, u"O"},
    {32, u"U"},
    {33, u"["},
    {34, u"I"},
    {35, u"P"},
    {36, u"Return"},
    {37, u"L"},
    {38, u"J"},
    {39, u"'"},
    {40, u"K"},
    {41, u";"},
    {42, u"\\"},
    {43, u","},
    {44, u"/"},
    {45, u"N"},
    {46, u"M"},
    {47, u"."},
    {48, u"Tab"},
    {49, u"Space"},
    {50, u"`"},
    {51, u"Delete"},
    {53, u"Escape"},
    {64, u"F17"},
    {65, u"Keypad ."},
    {67, u"Keypad *"},
    {69, u"Keypad +"},
    {71, u"Clear"},
    {75, u"Keypad /"},
    {76, u"Enter"},
    {78, u"Keypad -"},
    {79, u"F18"},
    {80, u"F19"},
    {81, u"Keypad ="},
    {82, u"Keypad 0"},
    {83, u"Keypad 1"},
    {84, u"Keypad 2"},
    {85, u"Keypad 3"},
    {86, u"Keypad 4"},
    {87, u"Keypad 5"},
    {88, u"Keypad 6"},
    {89, u"Keypad 7"},
    {90, u"F20"},
    {91, u"Keypad 8"},
    {92, u"Keypad 9"},
    {96, u"F5"},
    {97, u"F6"},
    {98, u"F7"},
    {99, u"F3"},
    {100, u"F8"},
    {101, u"F9"},
    {103, u"F11"},
    {105, u"F13"},
    {106, u"F16"},
    {107, u"F14"},
    {109, u"F10"},
    {111, u"F12"},
    {113, u"F15"},
    {114, u"Help"},
    {115, u"Home"},
    {116, u"Page Up"},
    {117, u"Forward Delete"},
    {118, u"F4"},
    {119, u"End"},
    {120, u"F2"},
    {121, u"Page Down"},
    {122, u"F1"},
    {123, u"←"},
    {124, u"→"},
    {125, u"↓"},
    {126, u"↑"},
});

// F1 to F20
constexpr std::array<qint64, 20> functionKeyCodes{122, 120, 99,  118, 96,  97,  98, 100, 101, 109,
                                                  103, 111, 105, 107, 113, 106, 64, 79,  80,  90};

QString symbols(quint64 flags)
{
    QString text;
    if (flags & KeyFlags::control)
        text += u'⌃';
    if (flags & KeyFlags::option)
        text += u'⌥';
    if (flags & KeyFlags::shift)
        text += u'⇧';
    if (flags & KeyFlags::command)
        text += u'⌘';
    return text;
}

QStringView boolText(bool value)
{
    return value ? u"true" : u"false";
}

} // namespace

QString HotkeySpec::jsonString() const
{
    return u"{\"keyCode\":%1,\"fn\":%2,\"command\":%3,\"option\":%4,\"control\":%5,\"shift\":%6}"_s.arg(
        QString::number(keyCode), boolText(fn), boolText(command), boolText(option), boolText(control),
        boolText(shift));
}

HotkeySpec HotkeySpec::decode(const std::optional<QString> &json)
{
    if (!json)
        return {};
    const QJsonDocument document = QJsonDocument::fromJson(json->toUtf8());
    const QJsonObject object = document.object();
    const auto code = Json::wholeNumber(object.value("keyCode"_L1));
    if (!code)
        return {};
    for (const auto member : {"fn"_L1, "command"_L1, "option"_L1, "control"_L1, "shift"_L1}) {
        if (!object.value(member).isBool())
            return {};
    }
    return {.keyCode = *code,
            .fn = object.value("fn"_L1).toBool(),
            .command = object.value("command"_L1).toBool(),
            .option = object.value("option"_L1).toBool(),
            .control = object.value("control"_L1).toBool(),
            .shift = object.value("shift"_L1).toBool()};
}

quint64 HotkeySpec::requiredFlags() const
{
    return (fn ? KeyFlags::fn : 0) | (command ? KeyFlags::command : 0) | (option ? KeyFlags::option : 0) |
           (control ? KeyFlags::control : 0) | (shift ? KeyFlags::shift : 0);
}

QString HotkeySpec::displayString() const
{
    return (fn ? u"Fn + "_s : QString()) + symbols(requiredFlags()) + keyNameFor(keyCode);
}

bool HotkeySpec::isFunctionKey() const
{
    return std::ranges::find(functionKeyCodes, keyCode) != functionKeyCodes.end();
}

QString HotkeySpec::keyNameFor(qint64 keyCode)
{
    const auto found = std::ranges::find(names, keyCode, &KeyName::code);
    return found != names.end() ? found->name.toString() : u"Key "_s + QString::number(keyCode);
}

QString HotkeySpec::modifierDisplay(quint64 flags)
{
    const QString others = symbols(flags);
    if (!(flags & KeyFlags::fn))
        return others;
    return others.isEmpty() ? u"Fn"_s : u"Fn + "_s + others;
}
