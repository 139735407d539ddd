#pragma once

#include "tray/MenuEntry.h"

#include <QList>
#include <QMenu>

#include <memory>
#include <vector>

/// A menu kept like a list of entries with as little change as it takes: panels show it in a process of
/// their own and are told of every action that comes or goes.
class TrayMenu
{
public:
    TrayMenu();

    QMenu &menu() { return m_menu; }
    void show(const QList<MenuEntry> &entries);

private:
    void rebuild(const QList<MenuEntry> &entries);

    QMenu m_menu;
    QList<MenuEntry> m_entries; // as shown; the actions' slots look here
    std::vector<std::unique_ptr<TrayMenu>> m_submenus;
};
