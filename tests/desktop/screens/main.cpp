#include "dashboard/window/WindowEngine.h"
#include "support/FakeMachine.h"
#include <QDirIterator>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTest>
int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    FakeAppearance appearance;
    QStringList symbols;
    for (const QString &f : QDir(QStringLiteral(":/icons")).entryList()) symbols << f.chopped(4);
    for (bool dark : {false, true}) {
        appearance.wanted.scheme = dark ? ColorScheme::dark : ColorScheme::light;
        WindowEngine engine(appearance);
        auto w = engine.makeWindow(QStringLiteral("Gallery"), {{QStringLiteral("symbols"), symbols}});
        w->resize(1000, 900);
        w->show();
        (void)QTest::qWaitForWindowExposed(w.get());
        QTest::qWait(500);
        w->grabWindow().save(QStringLiteral("%1/gallery-%2.png").arg(QString::fromLocal8Bit(argv[1])).arg(dark ? QStringLiteral("dark") : QStringLiteral("light")));
    }
}
