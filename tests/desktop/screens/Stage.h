#pragma once

#include "program/Host.h"
#include "program/Windows.h"
#include "support/FakeMachine.h"

#include <QSize>

#include <memory>

class QQuickWindow;

/// A whole program with its windows over a fake machine. Set the scene, then open.
class Stage
{
public:
    Stage();

    /// So many dictations, the newest minutes ago, the oldest months; always the same.
    void seed(int records);
    /// A dictation of so many minutes before now.
    void add(const QString &text, int minutesAgo);

    /// The program, started when it is first needed.
    Host &host();
    Windows &windows();
    /// The dashboard with a section in front, exposed.
    QQuickWindow &open(DashboardSection section, const QSize &size = QSize(960, 640));

    static std::unique_ptr<WindowEngine> makeEngine(Appearance &appearance, const Graphics &graphics);
    static QQuickWindow &quick(QWindow &window);

    FakeMachine machine;

private:
    std::unique_ptr<Host> m_host;
    std::unique_ptr<Windows> m_windows;
};
