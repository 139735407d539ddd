#include "preferences/HotkeySpec.h"

#include "base/Json.h"
#include "base/KeyTap.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <string_view>

using namespace Qt::StringLiterals;

namespace {

/// What the keys from 0 on print, by the ANSI layout; a blank for one that has another name.
constexpr std::string_view printed = "ASDFHGZXCV BQWERYT123465=97-80]OU[IP LJ'K;\\,/NM.  `";

// F1 to F20
constexpr std::array<qint64, 20> functionKeyCodes{122, 120, 99,  118, 96,  97,  98, 100, 101, 109,
                                                  103, 111, 105, 107, 113, 106, 64, 79,  80,  90};

struct KeyName
{
    qint64 code;
    const char *name;
};

constexpr auto names = std::to_array<KeyName>({
    {36, QT_TRANSLATE_NOOP("HotkeySpec", "Return")},
    {48, QT_TRANSLATE_NOOP("HotkeySpec", "Tab")},
    {49, QT_TRANSLATE_NOOP("HotkeySpec", "Space")},
    {51, QT_TRANSLATE_NOOP("HotkeySpec", "Delete")},
    {53, QT_TRANSLATE_NOOP("HotkeySpec", "Escape")},
    {65, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad .")},
    {67, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad *")},
    {69, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad +")},
    {71, QT_TRANSLATE_NOOP("HotkeySpec", "Clear")},
    {75, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad /")},
    {76, QT_TRANSLATE_NOOP("HotkeySpec", "Enter")},
    {78, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad -")},
    {81, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad =")},
    {82, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 0")},
    {83, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 1")},
    {84, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 2")},
    {85, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 3")},
    {86, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 4")},
    {87, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 5")},
    {88, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 6")},
    {89, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 7")},
    {91, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 8")},
    {92, QT_TRANSLATE_NOOP("HotkeySpec", "Keypad 9")},
    {114, QT_TRANSLATE_NOOP("HotkeySpec", "Help")},
    {115, QT_TRANSLATE_NOOP("HotkeySpec", "Home")},
    {116, QT_TRANSLATE_NOOP("HotkeySpec", "Page Up")},
    {117, QT_TRANSLATE_NOOP("HotkeySpec", "Forward Delete")},
    {119, QT_TRANSLATE_NOOP("HotkeySpec", "End")},
    {121, QT_TRANSLATE_NOOP("HotkeySpec", "Page Down")},
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
    return std::ranges::find(functionKeyCodes, keyCode) != functionKeyCodes.end();
}

QString HotkeySpec::keyNameFor(qint64 keyCode)
{
    if (keyCode >= 0 && keyCode < qint64(printed.size()) && printed[size_t(keyCode)] != ' ')
        return QChar::fromLatin1(printed[size_t(keyCode)]);
    if (const auto key = std::ranges::find(functionKeyCodes, keyCode); key != functionKeyCodes.end())
        return u'F' + QString::number(key - functionKeyCodes.begin() + 1);
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
