#include "tray/MainMenu.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

MainMenu::Menu applicationMenu()
{
    using enum MainMenu::Command;
    return {u"Sayvane"_s,
            {{u"Hide Sayvane"_s, hide, u"Ctrl+H"_s},
             {u"Hide Others"_s, hideOthers, {}},
             {},
             {u"Quit Sayvane"_s, quit, u"Ctrl+Q"_s}}};
}

MainMenu::Menu editMenu()
{
    using enum MainMenu::Command;
    return {u"Edit"_s,
            {{u"Undo"_s, undo, u"Ctrl+Z"_s},
             {u"Redo"_s, redo, u"Ctrl+Shift+Z"_s},
             {},
             {u"Cut"_s, cut, u"Ctrl+X"_s},
             {u"Copy"_s, copy, u"Ctrl+C"_s},
             {u"Paste"_s, paste, u"Ctrl+V"_s},
             {},
             {u"Select All"_s, selectAll, u"Ctrl+A"_s}}};
}

} // namespace

MainMenu::MainMenu(QList<Menu> existing) : m_menus(std::move(existing))
{
}

void MainMenu::installIfNeeded()
{
    if (std::exchange(m_installed, true))
        return;
    if (m_menus.isEmpty())
        m_menus.append(applicationMenu());
    if (std::ranges::none_of(m_menus, [](const Menu &menu) { return menu.title == "Edit"_L1; }))
        m_menus.append(editMenu());
    Q_EMIT menusInstalled();
}
