#include "desktop/screens/Scene.h"

#include "desktop/screens/FormScenes.h"

#include <QQuickWindow>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize smallest(760, 520);
constexpr QSize large(2560, 1440);

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

} // namespace

QList<Scene> allScenes()
{
    using enum DashboardSection::Id;
    return formScenes() + QList<Scene>{
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
        {u"banner-key-dark"_s, insights, [](Stage &stage) { provider(stage, u"groq"_s); }, {}, QSize(960, 640), true},
        {u"insights-empty"_s, insights},
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
        {u"dictionary-empty"_s, dictionary, [](Stage &stage) { vocabulary(stage, {}); }},
        {u"dictionary-many-dark"_s, dictionary,
         [](Stage &stage) {
             QStringList terms{u"Donaudampfschifffahrtselektrizitätenhauptbetriebswerkbauunterbeamtengesellschaft "
                               "mit beschränkter Haftung und noch einer Zeile mehr als in eine Zeile geht"_s};
             for (int i = 0; i < 60; ++i)
                 terms.append(u"Term number %1"_s.arg(i));
             vocabulary(stage, terms.join(u','));
         },
         typed("Bris"), smallest, true},
    };
}
