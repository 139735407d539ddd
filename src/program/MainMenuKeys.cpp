#include "program/MainMenuKeys.h"

#include "tray/MainMenu.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QWindow>

namespace {

using Command = MainMenu::Command;

const char *nameOf(Command command)
{
    switch (command) {
    case Command::undo:
        return "undo";
    case Command::redo:
        return "redo";
    case Command::cut:
        return "cut";
    case Command::copy:
        return "copy";
    case Command::paste:
        return "paste";
    case Command::selectAll:
        return "selectAll";
    default:
        return nullptr;
    }
}

bool hasOperation(const QObject &object, const char *name)
{
    return object.metaObject()->indexOfMethod(QByteArray(name) + "()") >= 0;
}

bool perform(Command command)
{
    switch (command) {
    case Command::hide:
        for (QWindow *window : QGuiApplication::topLevelWindows()) {
            // The overlay is no window of the user's.
            if (window->isVisible() && !window->flags().testFlag(Qt::WindowTransparentForInput))
                window->showMinimized();
        }
        return true;
    case Command::quit:
        QCoreApplication::quit();
        return true;
    case Command::hideOthers: // other programs' windows are not ours to hide here
    case Command::none:
        return false;
    default:
        break;
    }
    // Fields of text carry these names for their own operations; what has none sees the key itself.
    QObject *focused = QGuiApplication::focusObject();
    const char *operation = nameOf(command);
    return focused && hasOperation(*focused, operation) && QMetaObject::invokeMethod(focused, operation);
}

} // namespace

MainMenuKeys::MainMenuKeys(const MainMenu &menu) : m_menu(menu)
{
    connect(&m_menu, &MainMenu::menusInstalled, this, [this] { qApp->installEventFilter(this); });
}

bool MainMenuKeys::eventFilter(QObject *watched, QEvent *event)
{
    return event->type() == QEvent::KeyPress && qobject_cast<QWindow *>(watched) &&
           handle(static_cast<const QKeyEvent &>(*event));
}

bool MainMenuKeys::handle(const QKeyEvent &event)
{
    const QKeySequence pressed(event.keyCombination());
    for (const MainMenu::Menu &menu : m_menu.menus()) {
        for (const MainMenu::Item &item : menu.items) {
            if (!item.keys.isEmpty() && pressed == QKeySequence(item.keys, QKeySequence::PortableText))
                return perform(item.command);
        }
    }
    return false;
}
