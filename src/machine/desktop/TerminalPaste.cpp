#include "machine/desktop/TerminalPaste.h"

#include <QFile>

#include <algorithm>
#include <array>

#include <xkbcommon/xkbcommon-keysyms.h>

namespace {

constexpr qint64 keyV = 9;
constexpr qint64 keyY = 16;
constexpr qint64 keyInsert = 114;

constexpr PasteKeystroke controlV{XKB_KEY_v, {keyV, KeyFlags::control}, false};
constexpr PasteKeystroke controlShiftV{XKB_KEY_v, {keyV, KeyFlags::control | KeyFlags::shift}, false};
constexpr PasteKeystroke controlY{XKB_KEY_y, {keyY, KeyFlags::control}, false};
constexpr PasteKeystroke shiftInsert{XKB_KEY_Insert, {keyInsert, KeyFlags::shift}, false};
constexpr PasteKeystroke primaryShiftInsert{XKB_KEY_Insert, {keyInsert, KeyFlags::shift}, true};
constexpr PasteKeystroke primaryControlShiftInsert{
    XKB_KEY_Insert, {keyInsert, KeyFlags::control | KeyFlags::shift}, true};

constexpr std::array ordinary{controlV, shiftInsert};
constexpr std::array terminal{controlShiftV, primaryShiftInsert}; // Ctrl+V belongs to the program inside
constexpr std::array xterm{primaryShiftInsert, primaryControlShiftInsert};
constexpr std::array oldTerminal{primaryShiftInsert};
constexpr std::array vim{primaryShiftInsert};
constexpr std::array emacs{shiftInsert, controlY}; // Ctrl+V turns the page

struct Program
{
    const char *name; // of the window class or of the process, in lower case
    std::span<const PasteKeystroke> keystrokes;
};

// Those that do not paste by Ctrl+V: terminals, and the two old editors.
constexpr auto programs = std::to_array<Program>({
    {"alacritty", terminal},
    {"aterm", oldTerminal},
    {"blackbox-terminal", terminal},
    {"com.gexperts.tilix", terminal},
    {"com.mitchellh.ghostty", terminal},
    {"com.raggesilver.blackbox", terminal},
    {"contour", terminal},
    {"cool-retro-term", terminal},
    {"deepin-terminal", terminal},
    {"emacs", emacs},
    {"eterm", oldTerminal},
    {"foot", terminal},
    {"ghostty", terminal},
    {"gnome-terminal", terminal},
    {"gnome-terminal-server", terminal},
    {"guake", terminal},
    {"gvim", vim},
    {"io.elementary.terminal", terminal},
    {"kgx", terminal},
    {"kitty", terminal},
    {"koi8rxterm", xterm},
    {"konsole", terminal},
    {"kterm", xterm},
    {"lxterminal", terminal},
    {"mate-terminal", terminal},
    {"mlterm", oldTerminal},
    {"mrxvt", oldTerminal},
    {"org.gnome.console", terminal},
    {"org.gnome.ptyxis", terminal},
    {"org.wezfurlong.wezterm", terminal},
    {"ptyxis", terminal},
    {"qterminal", terminal},
    {"rio", terminal},
    {"roxterm", terminal},
    {"rxvt", oldTerminal},
    {"sakura", terminal},
    {"st", terminal},
    {"st-256color", terminal},
    {"stterm", terminal},
    {"terminator", terminal},
    {"terminology", terminal},
    {"tilda", terminal},
    {"tilix", terminal},
    {"urxvt", oldTerminal},
    {"urxvtd", oldTerminal},
    {"uxterm", xterm},
    {"wezterm", terminal},
    {"wezterm-gui", terminal},
    {"xfce4-terminal", terminal},
    {"xterm", xterm},
    {"yakuake", terminal},
    {"zutty", terminal},
});

constexpr qsizetype commandLength = 15;

std::span<const PasteKeystroke> find(const QByteArray &name, qsizetype length)
{
    const auto it = std::ranges::find_if(programs, [&](const Program &program) {
        return QByteArrayView(program.name).first(std::min(length, qsizetype(qstrlen(program.name)))) == name;
    });
    return it == programs.end() ? std::span<const PasteKeystroke>() : it->keystrokes;
}

} // namespace

QByteArray FocusedProgram::commandOf(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/comm").arg(pid));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

std::span<const PasteKeystroke> pasteKeystrokes(const FocusedProgram &window)
{
    for (const QByteArray &name : {window.className, window.instance}) {
        if (const auto keystrokes = find(name.toLower(), qsizetype(64)); !keystrokes.empty())
            return keystrokes;
    }
    return find(window.command.toLower(), commandLength);
}

std::span<const PasteKeystroke> pasteKeystrokes(bool isTerminal)
{
    return isTerminal ? terminal : ordinary;
}
