#include "desktop/screens/Stage.h"
#include "program/WindowPlace.h"
#include "screens/kit/Theme.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// The dashboard in the hands of somebody with a keyboard and a mouse.
struct Dashboard : Stage
{
    QQuickWindow *window = nullptr;
    QQuickItem *list = nullptr;

    void show(DashboardSection section, const QSize &size = QSize(760, 520))
    {
        window = &open(section, size);
        window->requestActivate();
        if (!QTest::qWaitForWindowActive(window))
            qFatal("The window did not become active.");
        settle();
        list = find([](QQuickItem &item) { return item.property("heir").isValid(); });
    }
    /// Waits until what has changed is on the screen.
    void settle()
    {
        for (int frame = 0; frame < 2; ++frame) {
            QSignalSpy swapped(window, &QQuickWindow::frameSwapped);
            window->update();
            if (!swapped.wait(5000))
                qFatal("Nothing is drawn.");
        }
    }
    template <typename Test>
    QQuickItem *find(Test test, QQuickItem *in = nullptr)
    {
        QQuickItem *item = in ? in : window->contentItem();
        if (!item->isVisible())
            return nullptr;
        if (in && test(*item))
            return item;
        for (QQuickItem *child : item->childItems())
            if (QQuickItem *found = find(test, child))
                return found;
        return nullptr;
    }
    void keys(const QList<Qt::Key> &pressed)
    {
        for (const Qt::Key key : pressed) {
            QTest::keyClick(window, key);
            QCoreApplication::processEvents();
        }
    }
    void times(int count, Qt::Key key) { keys(QList<Qt::Key>(count, key)); }
    /// The row with the keyboard; none unless all that fits of it is in view.
    QQuickItem *row() const
    {
        const auto *rows = list->property("contentItem").value<QQuickItem *>();
        QQuickItem *item = window->activeFocusItem();
        while (item && item->parentItem() != rows)
            item = item->parentItem();
        if (!item)
            return nullptr;
        const QRectF place = item->mapRectToItem(list, {0, 0, item->width(), item->height()});
        const QRectF view(0, -1, list->width(), list->height() + 2);
        return view.contains(place) || (place.height() > view.height() && view.intersects(place)) ? item : nullptr;
    }
    QString text() const
    {
        const QQuickItem *item = row();
        return !item                                 ? u"nothing in view"_s
               : item->property("display").isValid() ? item->property("display").toString()
                                                     : item->property("transcript").toString();
    }
    /// Of that row; -1 for none.
    int place() const { return row() ? row()->property("index").toInt() : -1; }
    bool isTyping(const char *placeholder) const
    {
        return window->activeFocusItem()->property("placeholderText") == QString::fromLatin1(placeholder);
    }
    QQuickItem *rowOf(const QString &text)
    {
        return find(
            [&](QQuickItem &item) { return item.property("transcript") == text || item.property("display") == text; });
    }
    QQuickItem *button(const QString &help, QQuickItem *in)
    {
        return find([&](QQuickItem &item) { return item.property("help") == help; }, in);
    }
    static QPoint middle(const QQuickItem &item)
    {
        return item.mapToScene(QPointF(item.width(), item.height()) / 2).toPoint();
    }
    void click(const QQuickItem &item, Qt::MouseButton which = Qt::LeftButton)
    {
        QTest::mouseMove(window, middle(item));
        settle();
        QTest::mouseClick(window, which, {}, middle(item));
        settle();
    }
    /// Whether the question stands over everything.
    bool asks()
    {
        return find([](QQuickItem &item) { return item.property("text") == u"This cannot be undone."_s; });
    }
    QStringList terms()
    {
        return machine.defaults.values.value(u"vocabulary"_s).toString().split(u", "_s, Qt::SkipEmptyParts);
    }
    const QList<Dictation> &records() { return host().history().records(); }
};

} // namespace

class WindowTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void aWalkThroughFortyTermsRemovesWhatItMeans()
    {
        Dashboard desk;
        QStringList expected;
        for (int i = 0; i < 40; ++i)
            expected.append(u"Term %1"_s.arg(i));
        desk.machine.defaults.values.insert(u"vocabulary"_s, expected.join(u", "_s));
        desk.show(DashboardSection::dictionary);
        QVERIFY(desk.isTyping("Add a term"));
        for (const QString &term : std::as_const(expected)) {
            desk.keys({Qt::Key_Tab});
            QCOMPARE(desk.text(), term);
        }
        desk.keys({Qt::Key_Tab});
        QCOMPARE(desk.row(), nullptr);
        desk.keys({Qt::Key_Backtab, Qt::Key_Backtab});
        QCOMPARE(desk.text(), expected[38]);
        desk.keys({Qt::Key_Home, Qt::Key_Up});
        QCOMPARE(desk.text(), expected[0]);
        desk.keys({Qt::Key_PageDown});
        QVERIFY(desk.text() != expected[0] && desk.row());

        const auto remove = [&](Qt::Key key) {
            const QString gone = desk.text();
            const auto at = expected.indexOf(gone);
            QVERIFY2(at >= 0, qPrintable(gone));
            expected.removeAt(at);
            desk.keys({key});
            desk.settle();
            QCOMPARE(desk.terms(), expected);
            if (!expected.isEmpty())
                QCOMPARE(desk.text(), expected[std::min(at, expected.size() - 1)]);
        };
        remove(Qt::Key_Space);
        remove(Qt::Key_Return);
        desk.keys({Qt::Key_End});
        while (!expected.isEmpty() && !QTest::currentTestFailed()) {
            remove(Qt::Key_Space);
            if (expected.size() == 20)
                desk.keys({Qt::Key_Home, Qt::Key_Down});
        }
        QVERIFY(desk.isTyping("Add a term"));
    }

    void aWalkThroughTwoThousandDictationsRemovesWhatItMeans()
    {
        Dashboard desk;
        desk.seed(2000);
        desk.add(u"Tall. "_s.repeated(900), 1);
        desk.show(DashboardSection::dictation);
        QVERIFY(desk.isTyping("Search transcripts"));
        const auto at = [&](qsizetype place) { return desk.records().at(place).text; };

        // One that is taller than the view is read to its end, down and up again.
        desk.keys({Qt::Key_Down});
        QCOMPARE(desk.text(), at(0));
        QVERIFY(desk.row()->height() > 2 * desk.list->height());
        const auto bottom = [&] { return desk.row()->mapToItem(desk.list, {0, desk.row()->height()}).y(); };
        while (bottom() > desk.list->height() + 1) {
            const double before = bottom();
            desk.keys({Qt::Key_PageDown});
            QCOMPARE(desk.text(), at(0));
            QVERIFY(bottom() < before && bottom() > before - desk.list->height());
        }
        desk.keys({Qt::Key_Down});
        QCOMPARE(desk.text(), at(1));
        desk.keys({Qt::Key_Up});
        QCOMPARE(desk.text(), at(0));
        QVERIFY(std::abs(bottom() - desk.list->height()) < 2);

        desk.times(300, Qt::Key_Down);
        QCOMPARE(desk.place(), 300);
        desk.keys({Qt::Key_End, Qt::Key_Down});
        QCOMPARE(desk.place(), 1999);
        int pages = 0;
        for (int before = 2000; before > 1; ++pages) {
            desk.keys({Qt::Key_PageUp});
            QVERIFY2(desk.place() >= 0 && desk.place() < before, qPrintable(QString::number(before)));
            before = desk.place();
        }
        QVERIFY2(pages > 400 && pages < 1000, qPrintable(QString::number(pages)));

        // Its buttons come next, and what takes its place has the keyboard, but no button.
        desk.keys({Qt::Key_Home, Qt::Key_PageDown, Qt::Key_End, Qt::Key_Home});
        desk.times(40, Qt::Key_Down);
        for (int round = 0; round < 3; ++round) {
            const int place = desk.place();
            const QUuid gone = desk.records().at(place).id;
            const QUuid next = desk.records().at(place + 1).id;
            desk.keys({Qt::Key_Tab, Qt::Key_Tab});
            QCOMPARE(desk.window->activeFocusItem()->property("help").toString(), u"Delete"_s);
            desk.keys({Qt::Key_Space, Qt::Key_Space, Qt::Key_Space});
            desk.settle();
            QCOMPARE(desk.records().size(), 2000 - round - 1);
            QVERIFY(std::ranges::none_of(desk.records(), [&](const Dictation &each) { return each.id == gone; }));
            QCOMPARE(desk.records().at(place).id, next);
            QCOMPARE(desk.place(), place);
            QCOMPARE(desk.window->activeFocusItem(), desk.row());
        }
        desk.keys({Qt::Key_Menu, Qt::Key_Down, Qt::Key_Return});
        desk.settle();
        QCOMPARE(desk.records().size(), 1996);
        QCOMPARE(desk.window->activeFocusItem(), desk.row());
        desk.keys({Qt::Key_Menu, Qt::Key_Return});
        QCOMPARE(desk.machine.pasteboard.text(), desk.text());
    }
    void theKeyboardIsNeverLost()
    {
        Dashboard desk;
        desk.seed(40);
        desk.show(DashboardSection::dictation);
        for (const char letter : {'z', 'e', 'b', 'r', 'a'})
            QTest::keyClick(desk.window, letter);
        desk.keys({Qt::Key_Down});
        QVERIFY(desk.isTyping("Search transcripts"));
        desk.keys({Qt::Key_Escape});
        for (const char letter : {'p', 'l', 'u', 'm', 'b'})
            QTest::keyClick(desk.window, letter);
        desk.settle();
        for (desk.keys({Qt::Key_Down}); desk.row(); desk.settle())
            desk.keys({Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Space});
        QCOMPARE(desk.records().size(), 35);
        QVERIFY(desk.isTyping("Search transcripts"));

        // A question is withdrawn when another screen is opened, which gets the keyboard: the keys that scroll
        // work there, and beside it.
        desk.window->resize(760, 400);
        desk.click(*desk.find([](QQuickItem &item) { return item.property("text") == u"Clear history"_s; }));
        QTRY_VERIFY(desk.asks());
        desk.windows().navigation().setSection(DashboardSection::insights);
        desk.settle();
        QVERIFY(!desk.asks());
        QQuickItem *page = desk.find([](QQuickItem &item) { return item.property("label") == u"Insights"_s; });
        desk.keys({Qt::Key_End});
        const double end = page->property("contentY").toDouble();
        QVERIFY(end > 100);
        desk.keys({Qt::Key_PageUp});
        QVERIFY(page->property("contentY").toDouble() < end);
        desk.click(*desk.find([](QQuickItem &item) { return item.property("text") == u"Dictation"_s; }));
        QVERIFY(!desk.asks());
        desk.click(*desk.find([](QQuickItem &item) { return item.property("text") == u"Insights"_s; }));
        desk.keys({Qt::Key_End});
        QCOMPARE(page->property("contentY").toDouble(), end);
        desk.keys({Qt::Key_Home, Qt::Key_Backtab, Qt::Key_PageDown});
        QVERIFY(page->property("contentY").toDouble() > 0);
    }

    void aScreenIsWhereItWasLeft()
    {
        Dashboard desk;
        desk.seed(2000);
        desk.show(DashboardSection::insights);
        desk.keys({Qt::Key_PageDown});
        desk.show(DashboardSection::dictation);
        desk.keys({Qt::Key_Down, Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_PageDown});
        const int seen = desk.place();
        const double place = desk.row()->mapToItem(desk.list, {}).y();
        desk.window->close();
        desk.add(u"What came meanwhile"_s, 0);
        desk.show(DashboardSection::dictation);
        const QQuickItem *row = desk.find([&](QQuickItem &item) {
            return item.property("transcript").isValid() && item.property("index") == seen + 1;
        });
        QVERIFY(row);
        QVERIFY(std::abs(row->mapToItem(desk.list, {}).y() - place) < 1);
        desk.show(DashboardSection::insights);
        QQuickItem *page = desk.find([](QQuickItem &item) { return item.property("label") == u"Insights"_s; });
        QVERIFY(page->property("contentY").toDouble() > 100);
    }

    void aClickMeansOneThing()
    {
        Dashboard desk;
        desk.seed(40);
        desk.machine.defaults.values.insert(u"vocabulary"_s, u"One, Two, Three"_s);
        desk.show(DashboardSection::dictation);
        const auto at = [&](qsizetype place) { return desk.records().at(place).text; };

        // What is clicked has the keyboard, and stays where it is.
        QQuickItem *row = desk.rowOf(at(2));
        const double top = desk.list->property("contentY").toDouble();
        desk.click(*desk.find([](QQuickItem &item) { return item.property("selectedText").isValid(); }, row));
        QCOMPARE(desk.text(), at(2));
        QCOMPARE(desk.list->property("contentY").toDouble(), top);

        // A copy is seen to be made.
        desk.click(*desk.button(u"Copy transcript"_s, row));
        QCOMPARE(desk.machine.pasteboard.text(), at(2));
        QVERIFY(desk.button(u"Copied"_s, row));

        // Where nothing is seen there is nothing to tap.
        QQuickItem *other = desk.rowOf(at(0));
        QVERIFY(!desk.button(u"Delete"_s, other));
        QQuickItem *shown = desk.button(u"Delete"_s, row);
        QVERIFY(shown);

        // The second click of a double-click is not the next row's; a later one is.
        const QPoint trash = Dashboard::middle(*shown);
        QTest::mouseClick(desk.window, Qt::LeftButton, {}, trash);
        desk.settle();
        QTest::mouseClick(desk.window, Qt::LeftButton, {}, trash);
        desk.settle();
        QCOMPARE(desk.records().size(), 39);
        QTRY_VERIFY(!desk.find([](QQuickItem &item) { return item.inherits("QQuickMultiPointTouchArea"); }));
        desk.show(DashboardSection::dictionary);
        const QPoint minus = Dashboard::middle(*desk.button(u"Remove"_s, desk.rowOf(u"One"_s)));
        for (int click = 0; click < 2; ++click) {
            QTest::mouseClick(desk.window, Qt::LeftButton, {}, minus);
            desk.settle();
        }
        QCOMPARE(desk.terms(), (QStringList{u"Two"_s, u"Three"_s}));
    }

    void theProgramIsRegularWhileAWindowIsOpen()
    {
        FakeMachine machine;
        int cancelled = 0;
        int menus = 0;
        Host host(machine.platform, u"https://service.test"_s);
        Windows windows(host, machine.platform, &Stage::makeEngine,
                        {.installMainMenu = [&] { ++menus; }, .cancelShortcutCapture = [&] { ++cancelled; }});
        QVERIFY(!windows.dashboard().window());
        windows.openDashboard();
        QWindow &window = *windows.dashboard().window();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.title(), u"Sayvane"_s);
        // As large as it is meant to be, or as the screen has room for with a frame.
        const QSize desk = window.screen()->availableSize();
        const QSize room = WindowPlace::room(desk, WindowPlace::usualFrame);
        QCOMPARE(window.size(), QSize(960, 640).boundedTo(room));
        QCOMPARE(window.minimumSize(), QSize(760, 520));
        QVERIFY(window.size().width() < desk.width() && window.framePosition().y() >= 0);
        QCOMPARE(machine.activation.policy, ActivationPolicy::regular);
        QCOMPARE(menus, 1);
        QCOMPARE(machine.clock.pendingTimers(), size_t{1});

        // A panel does not keep the program regular, another ordinary window does.
        QWindow panel;
        panel.setFlags(Qt::Tool | Qt::FramelessWindowHint);
        panel.show();
        QWindow other;
        other.show();
        window.close();
        QCOMPARE(machine.activation.policy, ActivationPolicy::regular);
        QCOMPARE(cancelled, 1);
        QCOMPARE(machine.clock.pendingTimers(), size_t{0});
        other.close();
        QCOMPARE(machine.activation.policy, ActivationPolicy::accessory);
        QCOMPARE(cancelled, 1);

        // The same window again, and back from a screen that is gone.
        window.setPosition(50000, 50000);
        windows.openSettings();
        QCOMPARE(windows.dashboard().window(), &window);
        QCOMPARE(windows.navigation().section().rawValue(), u"settings"_s);
        QVERIFY(window.screen()->availableGeometry().intersects(window.geometry()));
        window.close();
        QCOMPARE(machine.activation.policy, ActivationPolicy::accessory);

        // Where the desktop decides, it asks for no size.
        machine.activation.tiles = true;
        windows.openDashboard();
        QCOMPARE(window.minimumSize(), QSize(1, 1));
    }

    void aWindowFitsWithItsFrame_data()
    {
        QTest::addColumn<QSize>("desk");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QSize>("least");
        const QSize wanted(960, 640);
        const QSize least(760, 520);
        QTest::newRow("1920 x 1080") << QSize(1920, 1080) << wanted << least;
        QTest::newRow("1280 x 800 with a panel") << QSize(1280, 770) << wanted << least;
        QTest::newRow("1280 x 800 at 125 %") << QSize(1024, 640) << QSize(960, 584) << least;
        QTest::newRow("1920 x 1080 at 200 %, with a panel") << QSize(960, 513) << QSize(944, 457) << QSize(760, 457);
        QTest::newRow("640 x 480") << QSize(640, 480) << QSize(624, 424) << QSize(624, 424);
        QTest::newRow("no room at all") << QSize(10, 10) << QSize(1, 1) << QSize(1, 1);
    }
    void aWindowFitsWithItsFrame()
    {
        QFETCH(QSize, desk);
        const QSize room = WindowPlace::room(desk, WindowPlace::usualFrame);
        QTEST(QSize(960, 640).boundedTo(room), "size");
        QTEST(QSize(760, 520).boundedTo(room), "least");
    }

    /// Every sign and text can be read on both grounds, in every look and with any accent of the desktop.
    void colorsCanBeRead_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::addColumn<bool>("highContrast");
        QTest::addColumn<QColor>("accent");
        for (const bool dark : {false, true})
            for (const bool highContrast : {false, true})
                for (const QColor &accent : {QColor(), QColor(Qt::yellow), QColor(0x3584e4), QColor(Qt::black)})
                    QTest::addRow("%s%s %s", dark ? "dark" : "light", highContrast ? " high contrast" : "",
                                  qPrintable(accent.isValid() ? accent.name() : u"own"_s))
                        << dark << highContrast << accent;
    }
    void colorsCanBeRead()
    {
        QFETCH(bool, dark);
        QFETCH(bool, highContrast);
        QFETCH(QColor, accent);
        const auto colors =
            ThemeColors::of(dark, highContrast, accent.isValid() ? std::optional(accent) : std::nullopt);
        for (const QColor &ground : {colors.window, colors.surface}) {
            for (const QColor &ink :
                 {colors.text, colors.secondary, colors.accent, colors.success, colors.warning, colors.error})
                QVERIFY2(ThemeColors::contrast(ink, ground) >= 4.5, qPrintable(ink.name()));
            QVERIFY(ThemeColors::contrast(colors.tertiary, ground) >= 4.2);
        }
        QVERIFY(ThemeColors::contrast(colors.accent, colors.onAccent) >= 4.5);
        QCOMPARE(ThemeColors::contrast(Qt::white, Qt::black), 21.0);
    }

    void theThemeFollowsTheDesktop()
    {
        FakeAppearance appearance;
        const Theme theme(appearance);
        std::make_unique<Theme>(appearance).reset(); // another window's, closed again
        QSignalSpy changed(&theme, &Theme::changed);
        QVERIFY(!theme.isDark() && theme.motion() > 0);
        appearance.want({.scheme = ColorScheme::dark, .accent = 0xff8800, .reducedMotion = true});
        QVERIFY(theme.isDark() && theme.motion() == 0);
        QCOMPARE(theme.accent(), QColor(0xff8800));
        appearance.want(appearance.wanted);
        QCOMPARE(changed.count(), 1);
        appearance.want({.highContrast = true});
        QCOMPARE(theme.window(), QColor(Qt::white));
    }
};

QTEST_MAIN(WindowTest)
#include "WindowTest.moc"
