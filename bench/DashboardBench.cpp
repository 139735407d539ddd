#include "desktop/screens/Stage.h"
#include "screens/dashboard/DictationListView.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <string_view>

using namespace Qt::StringLiterals;

namespace {

constexpr int records = 2000;

double milliseconds(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void line(const char *name, QList<double> values)
{
    std::ranges::sort(values);
    std::printf("%-52s median %7.2f   99%% %7.2f   worst %7.2f\n", name, values[values.size() / 2],
                values[values.size() * 99 / 100], values.last());
}

/// Resident and proportional megabytes of this process.
void memory(const char *name)
{
    QFile file(u"/proc/self/smaps_rollup"_s);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const auto lines = file.readAll().split('\n');
    const auto amount = [&](const char *key) {
        for (const QByteArray &each : lines)
            if (each.startsWith(key))
                return each.simplified().split(' ')[1].toDouble() / 1024;
        return 0.0;
    };
    std::printf("%-52s RSS %7.1f MB   PSS %7.1f MB\n", name, amount("Rss:"), amount("Pss:"));
}

void drawn(QQuickWindow &window)
{
    bool swapped = false;
    const auto connection = QObject::connect(&window, &QQuickWindow::frameSwapped, [&] { swapped = true; });
    window.update();
    while (!swapped)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QObject::disconnect(connection);
}

QQuickItem *listIn(QQuickItem *item)
{
    if (item->inherits("QQuickListView") && item->property("reuseItems").toBool() && item->isVisible())
        return item;
    for (QQuickItem *child : item->childItems())
        if (QQuickItem *found = listIn(child))
            return found;
    return nullptr;
}

} // namespace

/// What the dashboard costs with 2,000 dictations. To be run in a session with a display.
int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    Stage stage;
    stage.seed(records);
    stage.windows();
    QTest::qWait(500);
    memory("before the dashboard is opened");

    QElapsedTimer timer;
    timer.start();
    stage.windows().openDashboard();
    QQuickWindow &window = Stage::quick(*stage.windows().dashboard().window());
    drawn(window);
    std::printf("%-52s %7.1f\n", "first opening to first frame, ms", milliseconds(timer));
    QTest::qWait(1000);
    memory("with the dashboard open");

    QQuickItem *list = listIn(window.contentItem());
    QList<double> frames;
    for (int i = 0; i < 600; ++i) {
        timer.start();
        list->setProperty("contentY", i * 40.0);
        drawn(window);
        frames.append(milliseconds(timer));
    }
    line("frame while scrolling, 40 points a frame, ms", frames);

    list->setProperty("contentY", 0.0);
    QList<double> strokes;
    for (int round = 0; round < 5; ++round) {
        for (const char key : std::string_view("plumber")) {
            timer.start();
            QTest::keyClick(&window, key);
            drawn(window);
            strokes.append(milliseconds(timer));
        }
        QTest::keyClick(&window, Qt::Key_Escape);
        drawn(window);
    }
    line("key stroke in the search to the frame with it, ms", strokes);

    window.close();
    QTest::qWait(1000);
    memory("after the dashboard is closed");
    QList<double> again;
    for (int i = 0; i < 5; ++i) {
        timer.start();
        stage.windows().openDashboard();
        drawn(window);
        again.append(milliseconds(timer));
        QTest::qWait(200);
        window.close();
        QTest::qWait(200);
    }
    line("opening again to the first frame, ms", again);
    return 0;
}
