#include "platform/linux/x11/TerminalPaste.h"

#include "platform/linux/x11/FocusedWindow.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <optional>

namespace {

struct Terminal
{
    const char *name; // of the window class or of the process, in lower case
    PasteKeystroke keystroke;
};

constexpr PasteKeystroke controlShiftV = PasteKeystroke::controlShiftV;
constexpr PasteKeystroke shiftInsert = PasteKeystroke::shiftInsert;

constexpr auto terminals = std::to_array<Terminal>({
    {"alacritty", controlShiftV},
    {"aterm", shiftInsert},
    {"blackbox-terminal", controlShiftV},
    {"com.gexperts.tilix", controlShiftV},
    {"com.mitchellh.ghostty", controlShiftV},
    {"com.raggesilver.blackbox", controlShiftV},
    {"contour", controlShiftV},
    {"cool-retro-term", controlShiftV},
    {"deepin-terminal", controlShiftV},
    {"eterm", shiftInsert},
    {"foot", controlShiftV},
    {"ghostty", controlShiftV},
    {"gnome-terminal", controlShiftV},
    {"gnome-terminal-server", controlShiftV},
    {"guake", controlShiftV},
    {"io.elementary.terminal", controlShiftV},
    {"kgx", controlShiftV},
    {"kitty", controlShiftV},
    {"koi8rxterm", shiftInsert},
    {"konsole", controlShiftV},
    {"kterm", shiftInsert},
    {"lxterminal", controlShiftV},
    {"mate-terminal", controlShiftV},
    {"mlterm", shiftInsert},
    {"mrxvt", shiftInsert},
    {"org.gnome.console", controlShiftV},
    {"org.gnome.ptyxis", controlShiftV},
    {"org.wezfurlong.wezterm", controlShiftV},
    {"ptyxis", controlShiftV},
    {"qterminal", controlShiftV},
    {"rio", controlShiftV},
    {"roxterm", controlShiftV},
    {"rxvt", shiftInsert},
    {"sakura", controlShiftV},
    {"st", controlShiftV},
    {"st-256color", controlShiftV},
    {"stterm", controlShiftV},
    {"terminator", controlShiftV},
    {"terminology", controlShiftV},
    {"tilda", controlShiftV},
    {"tilix", controlShiftV},
    {"urxvt", shiftInsert},
    {"urxvtd", shiftInsert},
    {"uxterm", shiftInsert},
    {"wezterm", controlShiftV},
    {"wezterm-gui", controlShiftV},
    {"xfce4-terminal", controlShiftV},
    {"xterm", shiftInsert},
    {"yakuake", controlShiftV},
    {"zutty", controlShiftV},
});

constexpr qsizetype commandLength = 15;

std::optional<PasteKeystroke> find(const QByteArray &name, qsizetype length)
{
    const auto it = std::ranges::find_if(terminals, [&](const Terminal &terminal) {
        return QByteArrayView(terminal.name).first(std::min(length, qsizetype(qstrlen(terminal.name)))) ==
               name;
    });
    return it == terminals.end() ? std::nullopt : std::optional(it->keystroke);
}

} // namespace

PasteKeystroke pasteKeystroke(const FocusedWindow &window)
{
    for (const QByteArray &name : {window.className, window.instance}) {
        if (const auto keystroke = find(name.toLower(), qsizetype(64)))
            return *keystroke;
    }
    return find(window.command.toLower(), commandLength).value_or(PasteKeystroke::controlV);
}
