#include "tray/BusMenu.h"
#include "program/FlowFixture.h"
#include "tray/MenuView.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// A panel that keeps an entry by its id: its type and whether it opens a menu are what they were at first, and
/// what is not told again stays as it was.
class KeepingPanel
{
public:
    KeepingPanel(BusMenu &menu, int depth) : m_menu(menu), m_depth(depth) {}

    /// One line an entry: "-" a separator, "(disabled)", "submenu>[its lines]".
    QString lines(int parent = 0)
    {
        MenuLayout layout;
        if (m_menu.AboutToShow(parent)) {
            m_menu.GetLayout(parent, m_depth, {}, layout);
            keep(layout);
        }
        QStringList found;
        for (const int id : m_children.value(parent)) {
            const QVariantMap facts = m_known.value(id);
            QString line = facts.value(u"label"_s).toString();
            if (!facts.value(u"shortcut"_s).isNull())
                line += u" key"_s;
            if (facts.value(u"children-display"_s) == "submenu"_L1)
                line += u">["_s + lines(id) + u']';
            if (facts.value(u"type"_s) == "separator"_L1)
                line = u"-"_s;
            else if (!facts.value(u"enabled"_s).toBool())
                line = u'(' + line + u')';
            found.append(line);
        }
        return found.join(u'|');
    }
    /// The id of what shows this label.
    int find(const QString &label) const
    {
        for (auto it = m_known.begin(); it != m_known.end(); ++it) {
            if (it->value(u"label"_s) == label)
                return it.key();
        }
        return -1;
    }

private:
    void keep(const MenuLayout &layout)
    {
        if (layout.children.isEmpty())
            return;
        m_children[layout.id].clear();
        for (const QDBusVariant &each : layout.children) {
            const auto child = each.variant().value<MenuLayout>();
            const bool isKnown = m_known.contains(child.id);
            QVariantMap &facts = m_known[child.id];
            for (auto it = child.properties.begin(); it != child.properties.end(); ++it) {
                if (!isKnown || (it.key() != "type"_L1 && it.key() != "children-display"_L1))
                    facts.insert(it.key(), it.value());
            }
            m_children[layout.id].append(child.id);
            keep(child);
        }
    }

    BusMenu &m_menu;
    int m_depth;
    QHash<int, QVariantMap> m_known;
    QHash<int, QList<int>> m_children;
};

} // namespace

/// The tray's menu as panels with a memory show it.
class BusMenuTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m = std::make_unique<FlowFixture>();
        Host &host = m->host();
        host.prefs().cleanupEnabled.set(false);
        m_view = std::make_unique<MenuView>(MenuView::Observed{host.flow(), host.history(), host.account(),
                                                               host.answerMode(), host.prefs(), m->machine.pasteboard},
                                            ShellCommands{[] {}, [] {}, [] {}});
        m_menu = std::make_unique<BusMenu>([this] { return m_view->entries(); });
        connect(m_view.get(), &MenuView::changed, m_menu.get(), &BusMenu::announce);
    }
    void cleanup()
    {
        m_menu.reset();
        m_view.reset();
        m.reset();
    }

    void panelsThatKeepEntriesShowWhatThereIs_data();
    void panelsThatKeepEntriesShowWhatThereIs();
    void aClickDoesWhatWasShown();
    void idsThatNobodyWasGivenAreHarmless();

private:
    void dictate(const QString &text)
    {
        m->dictate(text, {});
        m->finishPaste();
    }
    void click(int id)
    {
        m_menu->Event(id, u"clicked"_s, {}, 0);
        QCoreApplication::processEvents();
    }

    std::unique_ptr<FlowFixture> m;
    std::unique_ptr<MenuView> m_view;
    std::unique_ptr<BusMenu> m_menu;
};

void BusMenuTest::panelsThatKeepEntriesShowWhatThereIs_data()
{
    QTest::addColumn<int>("depth");
    QTest::newRow("one level at a time, as Plasma") << 1;
    QTest::newRow("all at once, as GNOME") << -1;
}

void BusMenuTest::panelsThatKeepEntriesShowWhatThereIs()
{
    QFETCH(int, depth);
    KeepingPanel panel(*m_menu, depth);
    const auto shows = [&](const QString &middle) {
        const QString expected = u"Open Sayvane|-|"_s + middle + u"|-|Settings key|Quit Sayvane key"_s;
        QCOMPARE(panel.lines(), expected);
        QCOMPARE(KeepingPanel(*m_menu, -1).lines(), QString()); // nobody asks anew for what has not changed
    };
    const QString facts = u"(Auto-detect)|(Fn + Space to start / stop)"_s;
    shows(u"(Sayvane: ready)|"_s + facts + u"|-|Start Dictation"_s);
    m->tapShortcut();
    shows(u"(● Listening…)|"_s + facts + u"|-|Stop & Transcribe"_s);
    m->machine.clock.advance(std::chrono::seconds(2));
    m->tapShortcut();
    shows(u"(Transcribing…)|"_s + facts + u"|-|(Start Dictation)"_s);
    m->answerText(u"one_two"_s);
    m->finishPaste();
    const QString lasted = u"|(Last dictation: 0.0 s)|-|Start Dictation|Copy Last Transcript"_s;
    shows(u"(Sayvane: ready)|"_s + facts + lasted + u"|History>[one__two]"_s);
    dictate(QString());
    const QString failed = u"|-|(⚠️ Nothing heard)"_s;
    shows(u"(Sayvane: ready)|"_s + facts + lasted + u"|History>[one__two]"_s + failed);
    m->host().prefs().language.set(u"gu"_s);
    const QString inGujarati = u"(Gujarati)|(Fn + Space to start / stop)"_s;
    shows(u"(Sayvane: ready)|"_s + inGujarati + lasted + u"|History>[one__two]"_s + failed);
    for (const QString &text : {u"three"_s, u"one_two"_s})
        dictate(text);
    shows(u"(Sayvane: ready)|"_s + inGujarati + lasted + u"|History>[one__two|three|one__two]"_s);
    m->host().account().setRemainingSeconds(240);
    m->host().answerMode().setEnabled(true);
    shows(u"(Sayvane: ready)|(Answer mode on)|(4 minutes left today)|"_s + inGujarati + lasted +
          u"|History>[one__two|three|one__two]"_s);
}

void BusMenuTest::aClickDoesWhatWasShown()
{
    KeepingPanel panel(*m_menu, 1);
    dictate(u"first"_s);
    panel.lines();
    const int first = panel.find(u"first"_s);
    dictate(u"second"_s);
    MenuLayout layout;
    m_menu->GetLayout(0, 1, {}, layout); // the panel has the new menu, but its History is open still
    click(first);
    QCOMPARE(m->machine.pasteboard.text(), u"first"_s);
}

void BusMenuTest::idsThatNobodyWasGivenAreHarmless()
{
    KeepingPanel(*m_menu, -1).lines();
    for (const int id : {-1, 1000, 3'000'001, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        MenuLayout layout;
        m_menu->GetLayout(id, -1, {}, layout);
        QVERIFY(layout.children.isEmpty());
        QVERIFY(m_menu->GetGroupProperties({id}, {}).isEmpty());
        QList<int> missing;
        QVERIFY(m_menu->AboutToShowGroup({id}, missing).isEmpty());
        QCOMPARE(missing, QList<int>{id});
        click(id);
    }
    QCOMPARE(m->flow().state(), FlowState::idle);
}

QTEST_GUILESS_MAIN(BusMenuTest)
#include "BusMenuTest.moc"
