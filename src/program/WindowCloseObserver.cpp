#include "program/WindowCloseObserver.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

WindowCloseObserver::WindowCloseObserver(std::function<void(QWindow *)> closing)
    : m_closing(std::move(closing))
{
    qGuiApp->installEventFilter(this);
}

WindowCloseObserver::~WindowCloseObserver() = default;

bool WindowCloseObserver::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Close && watched->isWindowType())
        m_closing(static_cast<QWindow *>(watched));
    return false;
}
