#include "tray/TrayMenu.h"

#include <QAction>
#include <QKeySequence>
#include <QPalette>

#include <algorithm>

namespace {

using Kind = MenuEntry::Kind;

/// A menu shows one line and reads an ampersand as a mark.
QString shown(const QString &text)
{
    return text.simplified().replace(u'&', QStringLiteral("&&"));
}

/// Lines of text are entries that cannot be chosen, but are there to be read.
QPalette readable(QPalette colors)
{
    const QColor text = colors.color(QPalette::Active, QPalette::WindowText);
    const QColor base = colors.color(QPalette::Active, QPalette::Base);
    const auto between = [](int from, int to) { return from + (to - from) / 3; };
    const QColor quiet(between(text.red(), base.red()), between(text.green(), base.green()),
                       between(text.blue(), base.blue()));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        colors.setColor(QPalette::Disabled, role, quiet);
    return colors;
}

bool haveOneShape(const QList<MenuEntry> &left, const QList<MenuEntry> &right)
{
    return std::ranges::equal(left, right, {}, &MenuEntry::kind, &MenuEntry::kind);
}

} // namespace

TrayMenu::TrayMenu()
{
    m_menu.setPalette(readable(m_menu.palette()));
}

void TrayMenu::show(const QList<MenuEntry> &entries)
{
    if (!haveOneShape(entries, m_entries) || m_menu.isEmpty())
        rebuild(entries);
    m_entries = entries;
    const QList<QAction *> actions = m_menu.actions();
    auto submenu = m_submenus.begin();
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const MenuEntry &entry = entries[i];
        actions[i]->setText(shown(entry.text));
        actions[i]->setEnabled(entry.kind != Kind::text && entry.enabled);
        actions[i]->setShortcut(QKeySequence(entry.shortcut, QKeySequence::PortableText));
        if (entry.kind == Kind::submenu)
            (*submenu++)->show(entry.submenu);
    }
}

void TrayMenu::rebuild(const QList<MenuEntry> &entries)
{
    m_menu.clear();
    m_submenus.clear();
    for (qsizetype i = 0; i < entries.size(); ++i) {
        switch (entries[i].kind) {
        case Kind::separator:
            m_menu.addSeparator();
            break;
        case Kind::submenu:
            m_submenus.push_back(std::make_unique<TrayMenu>());
            m_menu.addMenu(&m_submenus.back()->menu());
            break;
        case Kind::text:
            m_menu.addAction(QString());
            break;
        case Kind::button:
            QObject::connect(m_menu.addAction(QString()), &QAction::triggered, &m_menu, [this, i] {
                const auto action = m_entries.value(i).action; // what it does may replace the entries
                if (action)
                    action();
            });
            break;
        }
    }
}
