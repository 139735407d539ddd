#include "desktop/screens/Stage.h"

#include "base/AtomicFile.h"
#include "history/HistoryFile.h"
#include "screens/kit/QuickWindowEngine.h"

#include <QDir>
#include <QQuickWindow>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QStringList sentences{
    u"The shop opens next week, and we should tell everybody before Friday."_s,
    u"Could you send me the draft of the contract when you have a minute?"_s,
    u"Reminder: water the plants, call the plumber, and book the train to Bristol."_s,
    u"I think the second version reads better. The first paragraph is too long, the tone of the third one is off, "
    "and the numbers in the table need another look before we publish any of this."_s,
    u"Thanks, that works for me."_s,
    u"Let us meet at half past nine in the small room upstairs.\n\nBring the samples."_s,
    u"Donaudampfschifffahrtselektrizitätenhauptbetriebswerkbauunterbeamtengesellschaft is one word."_s,
    u"مرحبا، أرسل لي المسودة قبل يوم الجمعة من فضلك."_s,
};

Dictation dictation(int number, const QDateTime &date, const QString &text)
{
    Dictation dictation;
    dictation.id = QUuid::createUuidV5(QUuid(), QString::number(number));
    dictation.date = date;
    dictation.text = text;
    dictation.wordCount = Dictation::wordCountOf(text);
    dictation.durationSeconds = static_cast<double>(dictation.wordCount) * 0.42 + 0.8;
    dictation.transcribeMs = 640 + number % 7 * 90;
    if (number % 3 != 0) {
        dictation.rawText = u"um "_s + text;
        dictation.cleanupMs = 280 + number % 5 * 60;
    }
    dictation.providerRaw = number % 4 == 0 ? u"groq"_s : u"sayvane"_s;
    return dictation;
}

} // namespace

std::unique_ptr<WindowEngine> Stage::makeEngine(Appearance &appearance, const Graphics &graphics)
{
    return std::make_unique<QuickWindowEngine>(appearance, graphics);
}

QQuickWindow &Stage::quick(QWindow &window)
{
    return *qobject_cast<QQuickWindow *>(&window);
}

Stage::Stage()
{
    machine.secrets.items.insert(u"sayvane_session"_s, "svs_token");
    machine.defaults.values.insert(u"provider"_s, u"sayvane"_s);
    machine.defaults.values.insert(u"accountEmail"_s, u"orrin@example.com"_s);
}

void Stage::seed(int records)
{
    QList<Dictation> history;
    QDateTime date = machine.clock.now().addSecs(-4 * 60);
    for (int i = 0; i < records; ++i) {
        history.append(dictation(i, date, sentences[i % sentences.size()]));
        date = date.addSecs(-(11 + i * 37 % 170) * 60);
    }
    const QString folder = machine.folders.applicationSupport() + u"/Sayvane"_s;
    QDir().mkpath(folder);
    if (!AtomicFile::replace(folder + u"/history.json"_s, HistoryFile::encode(history)))
        qFatal("The history could not be seeded.");
}

void Stage::add(const QString &text, int minutesAgo)
{
    host().history().append(dictation(static_cast<int>(host().history().records().size()) + 100000,
                                      machine.clock.now().addSecs(-minutesAgo * 60), text));
}

Host &Stage::host()
{
    if (!m_host)
        m_host = std::make_unique<Host>(machine.platform, u"https://service.test"_s);
    return *m_host;
}

Windows &Stage::windows()
{
    if (!m_windows)
        m_windows = std::make_unique<Windows>(host(), machine.platform, &makeEngine, Windows::Hooks{});
    return *m_windows;
}

QQuickWindow &Stage::open(DashboardSection section, const QSize &size)
{
    windows().navigation().setSection(section);
    windows().openDashboard();
    QQuickWindow &window = quick(*windows().dashboard().window());
    window.setMinimumSize(window.minimumSize().boundedTo(size)); // a tiling desktop asks for none
    window.resize(size);
    if (!QTest::qWaitForWindowExposed(&window))
        qFatal("The window did not appear.");
    return window;
}
