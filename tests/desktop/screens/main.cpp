#include "desktop/screens/Scene.h"
#include "machine/Wording.h"
#include "screens/kit/QuickWindowEngine.h"

#include <QApplication>
#include <QDir>
#include <QQuickWindow>
#include <QTest>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QtMessageHandler usual = nullptr;
int warnings = 0;

void listen(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    warnings += type != QtDebugMsg && type != QtInfoMsg;
    usual(type, context, message);
}

/// Long enough for everything that moves to have arrived.
constexpr int settlingMs = 400;
/// Long enough for a screen to take the keyboard.
constexpr int arrivingMs = 200;

bool picture(QQuickWindow &window, const QString &path)
{
    QTest::qWait(settlingMs);
    std::printf("%s\n", qPrintable(path));
    return window.grabWindow().save(path);
}

bool gallery(const QDir &folder, bool dark)
{
    FakeAppearance appearance;
    appearance.wanted.scheme = dark ? ColorScheme::dark : ColorScheme::light;
    const FakeGraphics graphics;
    QuickWindowEngine engine(appearance, graphics);
    QStringList symbols;
    for (const QString &file : QDir(u":/icons"_s).entryList())
        symbols.append(file.chopped(4));
    const auto window = engine.makeWindow(u"Gallery"_s, {{u"symbols"_s, symbols}});
    window->resize(1000, 980);
    window->show();
    return QTest::qWaitForWindowExposed(window.get()) &&
           picture(Stage::quick(*window), folder.filePath(dark ? u"gallery-dark.png"_s : u"gallery.png"_s));
}

bool show(const Scene &scene, const QDir &folder)
{
    Stage stage;
    stage.machine.appearance.wanted.scheme = scene.dark ? ColorScheme::dark : ColorScheme::light;
    if (scene.set)
        scene.set(stage);
    QQuickWindow &window = stage.open(scene.section, scene.size);
    if (scene.act) {
        QTest::qWait(arrivingMs);
        scene.act(window);
    }
    return picture(window, folder.filePath(scene.name + u".png"_s));
}

} // namespace

/// sayvane-screens FOLDER [WORD…]: pictures of all scenes, or of those whose name has one of the words. It fails
/// when one cannot be made, or when anything is warned of meanwhile.
int main(int argc, char **argv)
{
    usual = qInstallMessageHandler(&listen);
    QApplication application(argc, argv);
    Wording::install(application);
    QStringList words = QGuiApplication::arguments().mid(1);
    if (words.isEmpty())
        return 64;
    const QDir folder(words.takeFirst());
    const auto wanted = [&](const QString &name) {
        return words.isEmpty() || std::ranges::any_of(words, [&](const QString &word) { return name.contains(word); });
    };
    bool worked = folder.mkpath(u"."_s);
    for (const bool dark : {false, true})
        if (wanted(u"gallery"_s))
            worked = gallery(folder, dark) && worked;
    for (const Scene &scene : allScenes())
        if (wanted(scene.name))
            worked = show(scene, folder) && worked;
    if (warnings > 0)
        std::fprintf(stderr, "%d warnings\n", warnings);
    return worked && warnings == 0 ? 0 : 1;
}
