#pragma once

#include <QList>
#include <QString>

#include <functional>

/// One entry of a menu, apart from how a desktop draws it.
struct MenuEntry
{
    enum class Kind { button, text, separator, submenu };

    Kind kind = Kind::separator;
    /// What it is, whatever it reads at the moment, such as "dictate": panels keep an entry by this.
    QString name = {};
    QString text = {};
    bool enabled = true; ///< of a button
    std::function<void()> action = {};
    QString shortcut = {}; ///< shown beside the text, such as "Ctrl+Q"; empty for none
    QList<MenuEntry> submenu = {};
};
