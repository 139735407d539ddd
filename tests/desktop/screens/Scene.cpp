#include "desktop/screens/Scene.h"

#include "desktop/screens/FormScenes.h"

#include <QQuickWindow>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize smallest(760, 520);
constexpr QSize large(2560, 1440);
constexpr QSize tile(640, 480);   // half of a tiled screen
constexpr QSize sliver(480, 360); // where a tiling desktop leaves no more

auto records(int count)
{
    return [count](Stage &stage) { stage.seed(count); };
}

auto typed(const char *text)
{
    return [text](QQuickWindow &window) {
        for (const char *c = text; *c; ++c)
            QTest::keyClick(&window, *c);
    };
}

void provider(Stage &stage, const QString &raw)
{
    stage.machine.defaults.values.insert(u"provider"_s, raw);
}

void vocabulary(Stage &stage, const QString &terms)
{
    stage.machine.defaults.values.insert(u"vocabulary"_s, terms);
}

/// Every section where there is little room.
QList<Scene> narrowScenes()
{
    QList<Scene> scenes;
    for (const DashboardSection section : DashboardSection::allCases) {
        const auto fill = [](Stage &stage) {
            stage.seed(40);
            provider(stage, u"groq"_s);
            stage.machine.defaults.values.insert(u"advancedExpanded"_s, true);
        };
        scenes.append({u"tile-"_s + section.rawValue(), section, fill, {}, tile});
        scenes.append({u"sliver-"_s + section.rawValue(), section, fill, {}, sliver, true});
    }
    return scenes;
}

} // namespace

QList<Scene> allScenes()
{
    using enum DashboardSection::Id;
    return formScenes() + narrowScenes() +
           QList<Scene>{
               {u"dictation-empty"_s, dictation},
               {u"dictation-one"_s, dictation, records(1)},
               {u"dictation-many"_s, dictation, records(2000)},
               {u"dictation-many-dark"_s, dictation, records(2000), {}, QSize(960, 640), true},
               {u"dictation-smallest"_s, dictation, records(40), {}, smallest},
               {u"dictation-large"_s, dictation, records(2000), {}, large},
               {u"dictation-hover"_s, dictation, records(40),
                [](QQuickWindow &window) {
                    QTest::mouseMove(&window, {600, 330});
                }},
               {u"dictation-keyboard"_s, dictation, records(40),
                [](QQuickWindow &window) {
                    QTest::keyClick(&window, Qt::Key_Down);
                    QTest::keyClick(&window, Qt::Key_Down);
                }},
               {u"dictation-menu"_s, dictation, records(40),
                [](QQuickWindow &window) {
                    QTest::mouseClick(&window, Qt::RightButton, {}, {500, 330});
                }},
               {u"dictation-copied-dark"_s, dictation, records(40),
                [](QQuickWindow &window) {
                    QTest::keyClick(&window, Qt::Key_Down);
                    QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
                },
                QSize(960, 640), true},
               {u"dictation-search"_s, dictation, records(2000), typed("plumber")},
               {u"dictation-no-match"_s, dictation, records(40), typed("zebra")},
               {u"dictation-clear"_s, dictation, records(2000),
                [](QQuickWindow &window) {
                    QTest::mouseClick(&window, Qt::LeftButton, {}, {890, 40});
                }},
               {u"dictation-clear-dark"_s, dictation, records(2000),
                [](QQuickWindow &window) {
                    QTest::mouseClick(&window, Qt::LeftButton, {}, {890, 40});
                },
                QSize(960, 640), true},
               {u"banner-sign-in"_s, dictation, [](Stage &stage) { stage.machine.secrets.items.clear(); }},
               {u"banner-key-dark"_s,
                insights,
                [](Stage &stage) { provider(stage, u"groq"_s); },
                {},
                QSize(960, 640),
                true},
               {u"insights-empty"_s, insights},
               {u"insights-empty-dark"_s, insights, {}, {}, QSize(960, 640), true},
               {u"dictation-empty-dark"_s, dictation, {}, {}, QSize(960, 640), true},
               {u"dictionary-dark"_s, dictionary, {}, {}, QSize(960, 640), true},
               {u"insights-many"_s, insights, records(2000), {}, QSize(960, 1000)},
               {u"insights-many-dark"_s, insights, records(2000), {}, QSize(960, 1000), true},
               {u"insights-smallest"_s, insights, records(2000), {}, smallest},
               {u"insights-groq"_s,
                insights,
                [](Stage &stage) {
                    stage.seed(300);
                    provider(stage, u"groq"_s);
                    stage.machine.secrets.items.insert(u"groq_api_key"_s, "gsk_key");
                },
                {},
                QSize(760, 1000)},
               {u"insights-large"_s, insights, records(2000), {}, large},
               {u"dictionary"_s, dictionary},
               {u"dictionary-keyboard"_s,
                dictionary,
                {},
                [](QQuickWindow &window) {
                    QTest::keyClick(&window, Qt::Key_Tab);
                    QTest::keyClick(&window, Qt::Key_Tab);
                }},
               {u"dictionary-empty"_s, dictionary, [](Stage &stage) { vocabulary(stage, {}); }},
               {u"dictionary-many-dark"_s, dictionary,
                [](Stage &stage) {
                    QStringList terms{
                        u"Donaudampfschifffahrtselektrizitätenhauptbetriebswerkbauunterbeamtengesellschaft "
                        "mit beschränkter Haftung und noch einer Zeile mehr als in eine Zeile geht"_s};
                    for (int i = 0; i < 60; ++i)
                        terms.append(u"Term number %1"_s.arg(i));
                    vocabulary(stage, terms.join(u','));
                },
                typed("Bris"), smallest, true},
           };
}
