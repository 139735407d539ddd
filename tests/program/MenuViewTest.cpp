#include "tray/MenuView.h"
#include "program/FlowFixture.h"
#include "program/Windows.h"
#include "tray/MainMenu.h"

#include <QSignalSpy>
#include <QTest>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The tray's menu and the ways to the windows, without a window.
class MenuViewTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m = std::make_unique<FlowFixture>();
        m_asked.clear();
    }
    void cleanup()
    {
        m_menu.reset();
        m.reset();
    }

    void theMenuHoldsWhatTheStateAsksFor_data();
    void theMenuHoldsWhatTheStateAsksFor();
    void longTextsAreCut_data();
    void longTextsAreCut();
    void entriesDoWhatTheySay();
    void theDashboardOpensForThoseWhoNeedIt_data();
    void theDashboardOpensForThoseWhoNeedIt();
    void theTrustComesAndGoesInTheMenu();
    void theMainMenuIsInstalledOnce_data();
    void theMainMenuIsInstalledOnce();
    void theSecondWayToTheSettingsIsAFallBack();

private:
    MenuView &menu();
    /// One line an entry: "-" a separator, "text", "[button]", "(disabled)", "History>15" a submenu.
    QString drawn();
    const MenuEntry entry(const QString &text);

    std::unique_ptr<FlowFixture> m;
    std::unique_ptr<MenuView> m_menu;
    QStringList m_asked;
};

MenuView &MenuViewTest::menu()
{
    if (!m_menu) {
        Host &host = m->host();
        m_menu = std::make_unique<MenuView>(MenuView::Observed{host.flow(), host.history(), host.account(),
                                                               host.answerMode(), host.prefs(), m->machine.pasteboard},
                                            ShellCommands{[this] { m_asked.append(u"dashboard"_s); },
                                                          [this] { m_asked.append(u"settings"_s); },
                                                          [this] { m_asked.append(u"quit"_s); }});
    }
    return *m_menu;
}

QString MenuViewTest::drawn()
{
    QStringList lines;
    for (const MenuEntry &each : menu().entries()) {
        switch (each.kind) {
        case MenuEntry::Kind::separator:
            lines.append(u"-"_s);
            break;
        case MenuEntry::Kind::text:
            lines.append(each.text);
            break;
        case MenuEntry::Kind::button:
            lines.append((each.enabled ? u"[%1]"_s : u"(%1)"_s).arg(each.text + each.shortcut));
            break;
        case MenuEntry::Kind::submenu:
            lines.append(each.text + u'>' + QString::number(each.submenu.size()));
            break;
        }
    }
    return lines.join(u'|');
}

const MenuEntry MenuViewTest::entry(const QString &text)
{
    for (const MenuEntry &each : menu().entries()) {
        if (each.text == text)
            return each;
    }
    qWarning() << "no entry" << text << "in" << drawn();
    return {};
}

void MenuViewTest::theMenuHoldsWhatTheStateAsksFor_data()
{
    QTest::addColumn<std::function<void(FlowFixture &)>>("scene");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, std::function<void(FlowFixture &)> scene, const QString &expected) {
        QTest::newRow(name) << std::move(scene)
                            << u"[Open Sayvane]|-|"_s + expected + u"|-|[SettingsCtrl+,]|[Quit SayvaneCtrl+Q]"_s;
    };
    const auto dictated = [](FlowFixture &at) {
        at.host().prefs().cleanupEnabled.set(false);
        at.dictate(u"one two three four"_s, {});
        at.finishPaste();
    };
    const auto known = [](FlowFixture &at) {
        at.machine.defaults.values.insert(u"accountEmail"_s, u"ann@example.test"_s);
        at.host().account().setRemainingSeconds(240);
        at.host().answerMode().setEnabled(true);
    };
    row(
        "at first", [](FlowFixture &) {},
        u"Sayvane: ready|Auto-detect|Fn + Space to start / stop|-|[Start Dictation]"_s);
    row(
        "recording", [](FlowFixture &at) { at.host(), at.tapShortcut(); },
        u"● Listening…|Auto-detect|Fn + Space to start / stop|-|[Stop & Transcribe]"_s);
    row(
        "processing", [](FlowFixture &at) { at.host(), at.speak(); },
        u"Transcribing…|Auto-detect|Fn + Space to start / stop|-|(Start Dictation)"_s);
    row("signed in", known,
        u"Sayvane: ready|Answer mode on|ann@example.test|4 minutes left today|Auto-detect|"
        "Fn + Space to start / stop|-|[Start Dictation]"_s);
    row(
        "own key", [known](FlowFixture &at) { known(at), at.host().prefs().provider.set(Provider::groq); },
        u"Sayvane: ready|Auto-detect|Fn + Space to start / stop|-|[Start Dictation]"_s);
    row(
        "a provider that nobody knows",
        [known](FlowFixture &at) { known(at), at.machine.defaults.values.insert(u"provider"_s, u"other"_s); },
        u"Sayvane: ready|Answer mode on|ann@example.test|4 minutes left today|Auto-detect|"
        "Fn + Space to start / stop|-|[Start Dictation]"_s);
    row(
        "signed out", [known](FlowFixture &at) { known(at), at.host().account().signOut(); },
        u"Sayvane: ready|Auto-detect|Fn + Space to start / stop|-|[Start Dictation]"_s);
    row(
        "other preferences",
        [](FlowFixture &at) {
            at.host().prefs().language.set(u" gu "_s);
            at.flow().updateHotkey({.keyCode = 2, .fn = false, .command = true, .shift = true});
        },
        u"Sayvane: ready|Gujarati|⇧⌘D to start / stop|-|[Start Dictation]"_s);
    row(
        "no permission", [](FlowFixture &at) { at.machine.trust.trusted = at.machine.keyTaps.allowsInstall = false; },
        u"Sayvane: ready|Auto-detect|Fn + Space to start / stop|⚠️ Hotkey inactive: grant Accessibility|-|"
        "[Start Dictation]"_s);
    row("dictated", dictated,
        u"Sayvane: ready|Auto-detect|Fn + Space to start / stop|Last dictation: 0.0 s|-|[Start Dictation]|"
        "[Copy Last Transcript]|History>1"_s);
    row(
        "a failure",
        [](FlowFixture &at) {
            at.machine.microphone.hasDevice = false;
            at.host(), at.tapShortcut();
        },
        u"Sayvane: ready|Auto-detect|Fn + Space to start / stop|-|[Start Dictation]|-|⚠️ No microphone found"_s);
    row(
        "twenty dictations",
        [](FlowFixture &at) {
            for (int i = 1; i <= 20; ++i)
                at.host().history().append({.id = QUuid::createUuid(),
                                            .date = at.machine.clock.now(),
                                            .text = QString::number(i),
                                            .transcribeMs = i == 20 ? 950 : 1, // with the cleanup a tie: to even
                                            .cleanupMs = 300});
        },
        u"Sayvane: ready|Auto-detect|Fn + Space to start / stop|Last dictation: 1.2 s|-|[Start Dictation]|"
        "History>15"_s);
}

void MenuViewTest::theMenuHoldsWhatTheStateAsksFor()
{
    QFETCH(std::function<void(FlowFixture &)>, scene);
    scene(*m);
    QTEST(drawn(), "expected");
}

void MenuViewTest::longTextsAreCut_data()
{
    QTest::addColumn<QString>("email");
    QTest::addColumn<QString>("shownEmail");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    QTest::newRow("as long as may be") << QString(32, u'e') << QString(32, u'e') << QString(70, u't')
                                       << QString(70, u't');
    QTest::newRow("longer") << QString(40, u'e') << QString(31, u'e') + u'…' << QString(71, u't')
                            << QString(70, u't') + u'…';
    QTest::newRow("as a reader counts") << u"🙂"_s.repeated(32) << u"🙂"_s.repeated(32) << u"🙂"_s.repeated(71)
                                        << u"🙂"_s.repeated(70) + u'…';
}

void MenuViewTest::longTextsAreCut()
{
    QFETCH(QString, email);
    QFETCH(QString, text);
    QFETCH(QString, title);
    m->machine.defaults.values.insert(u"accountEmail"_s, email);
    m->host().history().append({.id = QUuid::createUuid(), .date = m->machine.clock.now(), .text = text});
    QTEST(menu().entries()[3].text, "shownEmail");
    const MenuEntry first = entry(u"History"_s).submenu.value(0);
    QCOMPARE(first.text, title);
    first.action();
    QCOMPARE(m->machine.pasteboard.text(), text);
}

void MenuViewTest::entriesDoWhatTheySay()
{
    m->host().prefs().cleanupEnabled.set(false);
    QSignalSpy changes(&menu(), &MenuView::changed);
    entry(u"Start Dictation"_s).action();
    QCOMPARE(m->flow().state(), FlowState::recording);
    QCOMPARE(changes.size(), 1);
    m->machine.clock.advance(2s);
    QCOMPARE(changes.size(), 1); // the meter moves, the menu does not
    entry(u"Stop & Transcribe"_s).action();
    m->answerText(u"said"_s);
    m->finishPaste();
    entry(u"Copy Last Transcript"_s).action();
    QCOMPARE(m->machine.pasteboard.text(), u"said"_s);
    QVERIFY(m_asked.isEmpty());
    m->machine.pasteboard.reachable = false; // until a window has the keyboard
    entry(u"Copy Last Transcript"_s).action();
    QCOMPARE(std::exchange(m_asked, {}), QStringList{u"dashboard"_s});
    for (const QString &title : {u"Open Sayvane"_s, u"Settings"_s, u"Quit Sayvane"_s})
        entry(title).action();
    QCOMPARE(m_asked, (QStringList{u"dashboard"_s, u"settings"_s, u"quit"_s}));
}

void MenuViewTest::theDashboardOpensForThoseWhoNeedIt_data()
{
    QTest::addColumn<bool>("wanted");
    QTest::addColumn<bool>("credential");
    QTest::addColumn<int>("atOnce");
    QTest::addColumn<int>("later");
    QTest::newRow("wanted at launch") << true << false << 1 << 1;
    QTest::newRow("nobody to dictate to") << false << false << 0 << 1;
    QTest::newRow("all set") << false << true << 0 << 0;
}

void MenuViewTest::theDashboardOpensForThoseWhoNeedIt()
{
    QFETCH(bool, wanted);
    QFETCH(bool, credential);
    m->machine.defaults.values.insert(u"showDashboardOnLaunch"_s, wanted);
    if (!credential)
        m->machine.secrets.items.clear();
    m->host();
    QTEST(m->dashboardsShown, "atOnce");
    m->machine.clock.advance(1999ms);
    QTEST(m->dashboardsShown, "atOnce");
    m->machine.clock.advance(10s);
    QTEST(m->dashboardsShown, "later");
}

void MenuViewTest::theTrustComesAndGoesInTheMenu()
{
    const QString warning = u"⚠️ Hotkey inactive: grant Accessibility"_s;
    QVERIFY(!drawn().contains(warning));
    for (const bool trusted : {false, true, false}) {
        m->machine.trust.trusted = m->machine.keyTaps.allowsInstall = trusted;
        m->machine.clock.advance(2s);
        QCOMPARE(drawn().contains(warning), !trusted);
    }
}

void MenuViewTest::theMainMenuIsInstalledOnce_data()
{
    QTest::addColumn<QStringList>("existing");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("none") << QStringList() << QStringList{u"Sayvane"_s, u"Edit"_s};
    QTest::newRow("one of its own") << QStringList{u"File"_s} << QStringList{u"File"_s, u"Edit"_s};
    QTest::newRow("an Edit menu") << QStringList{u"Edit"_s} << QStringList{u"Edit"_s};
}

void MenuViewTest::theMainMenuIsInstalledOnce()
{
    QFETCH(QStringList, existing);
    QList<MainMenu::Menu> before;
    for (const QString &title : existing)
        before.append({title, {}});
    MainMenu mainMenu(before);
    QSignalSpy installed(&mainMenu, &MainMenu::menusInstalled);
    for (int call = 0; call < 2; ++call) {
        mainMenu.installIfNeeded();
        QStringList titles;
        QString keys;
        for (const MainMenu::Menu &each : mainMenu.menus()) {
            titles.append(each.title);
            for (const MainMenu::Item &item : each.items)
                keys += item.title + u'=' + item.keys + u';';
        }
        QTEST(titles, "expected");
        if (existing.isEmpty())
            QCOMPARE(keys, u"Hide Sayvane=Ctrl+H;Hide Others=;=;Quit Sayvane=Ctrl+Q;Undo=Ctrl+Z;"
                           "Redo=Ctrl+Shift+Z;=;Cut=Ctrl+X;Copy=Ctrl+C;Paste=Ctrl+V;=;Select All=Ctrl+A;"_s);
    }
    QCOMPARE(installed.size(), 1);
}

void MenuViewTest::theSecondWayToTheSettingsIsAFallBack()
{
    for (const bool handled : {true, false}) {
        MainMenu mainMenu;
        QStringList calls;
        SettingsOpener opener(
            mainMenu, [&] { calls.append(u"activate"_s); },
            [&] {
                calls.append(mainMenu.installed() ? u"first"_s : u"too early"_s);
                return handled;
            },
            [&] {
                calls.append(u"second"_s);
                return true;
            });
        opener.open();
        QCOMPARE(calls,
                 QStringList({u"activate"_s, u"first"_s}) + (handled ? QStringList() : QStringList{u"second"_s}));
    }
}

QTEST_GUILESS_MAIN(MenuViewTest)
#include "MenuViewTest.moc"
