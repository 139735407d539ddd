#pragma once

#include <QList>
#include <QObject>
#include <QString>

/// The commands that every window of ours understands by their keys: those of the program and those of
/// editing. Installed once, when the first window is shown.
class MainMenu final : public QObject
{
    Q_OBJECT
public:
    enum class Command {
        none, ///< a separator
        hide,
        hideOthers,
        quit,
        undo,
        redo,
        cut,
        copy,
        paste,
        selectAll,
    };
    struct Item
    {
        QString title;
        Command command = Command::none;
        QString keys; ///< such as "Ctrl+Shift+Z"; empty for none
        bool operator==(const Item &) const = default;
    };
    struct Menu
    {
        QString title;
        QList<Item> items;
        bool operator==(const Menu &) const = default;
    };

    /// `existing` is the menu that the program has already, if any.
    explicit MainMenu(QList<Menu> existing = {});

    /// Adds, the first time it is called: the program's own menu, if there is none at all, and an "Edit"
    /// menu, if none is called that.
    void installIfNeeded();
    bool installed() const { return m_installed; }

    const QList<Menu> &menus() const { return m_menus; }

Q_SIGNALS:
    void menusInstalled();

private:
    QList<Menu> m_menus;
    bool m_installed = false;
};
