#include "desktop/x11/Typist.h"
#include "dictation/HotkeyMonitor.h"
#include "dictation/HotkeyRecorder.h"
#include "machine/x11/WindowKeys.h"
#include "machine/x11/X11Desktop.h"

#include <QAction>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QTest>

#include <atomic>

#include <linux/input-event-codes.h>

using namespace Qt::StringLiterals;

/// A window with a text field and a menu, typed into by real keys while a shortcut is being chosen.
class ShortcutCaptureTest final : public QObject
{
    Q_OBJECT

    struct Scene : QObject
    {
        X11Desktop desktop;
        Typist typist;
        QMainWindow window;
        QLineEdit *field = new QLineEdit(&window);
        int menuUses = 0;
        std::atomic<int> starts = 0;
        int pauses = 0;
        QString chosen;
        WindowKeys keys{false};
        std::unique_ptr<HotkeyMonitor> monitor;
        HotkeyRecorder recorder{keys, [this] { return monitor.get(); }, [this](const HotkeySpec &spec) { use(spec); }};

        Scene()
        {
            QAction *action = window.menuBar()->addMenu(u"File"_s)->addAction(u"Open"_s);
            action->setShortcut(QKeySequence(u"Ctrl+O"_s));
            QObject::connect(action, &QAction::triggered, &window, [this] { ++menuUses; });
            window.setCentralWidget(field);
            window.show();
            window.activateWindow();
            field->setFocus();
            use({});
            qApp->installEventFilter(this);
        }
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (watched == field && event->type() == QEvent::KeyPress)
                pauses += static_cast<QKeyEvent &>(*event).key() == Qt::Key_Pause;
            return false;
        }
        void use(const HotkeySpec &spec)
        {
            chosen = spec.displayString();
            monitor.reset();
            monitor = std::make_unique<HotkeyMonitor>(
                desktop.keyTaps(), spec, [this] { ++starts; }, [] {});
            monitor->start();
        }
        void chord(const QList<int> &modifiers, int key)
        {
            for (const int modifier : modifiers)
                typist.press(modifier);
            typist.tap(key);
            for (const int modifier : modifiers)
                typist.release(modifier);
        }
    };

private Q_SLOTS:
    void takesWhatIsPressed()
    {
        struct Row
        {
            QString layout;
            QList<int> modifiers;
            int key;
            QString shortcut;
        };
        for (const auto &[layout, modifiers, key, shortcut] :
             {Row{u"us"_s, {KEY_LEFTMETA}, KEY_SPACE, u"Fn + Space"_s}, // the one so far
              Row{u"us -option altwin:meta_win"_s, {KEY_LEFTMETA}, KEY_J, u"Fn + J"_s},
              Row{u"us"_s, {KEY_RIGHTCTRL}, KEY_O, u"⌃O"_s}, // the menu's
              Row{u"us"_s, {KEY_LEFTSHIFT, KEY_LEFTALT}, KEY_D, u"⌥⇧D"_s},
              Row{u"de"_s, {KEY_RIGHTALT}, KEY_Y, u"⌘Y"_s}, // the place of the key counts
              Row{u"us"_s, {}, KEY_F5, u"F5"_s}}) {         // under Caps Lock and Num Lock
            Typist::setLayout(layout.split(u' '));
            Scene scene;
            QVERIFY(QTest::qWaitForWindowActive(&scene.window));
            QTRY_VERIFY(scene.field->hasFocus());
            if (modifiers.isEmpty()) {
                scene.typist.tap(KEY_CAPSLOCK);
                scene.typist.tap(KEY_NUMLOCK);
            }
            scene.recorder.begin();
            scene.typist.tap(KEY_A);
            QTRY_VERIFY(scene.recorder.hint().value_or(QString()).startsWith(u"A on its own"));
            for (const int modifier : modifiers)
                scene.typist.press(modifier);
            if (!modifiers.isEmpty())
                QTRY_VERIFY(!scene.recorder.pressed().isEmpty());
            scene.typist.press(key);
            QTRY_VERIFY(!scene.recorder.capturing());
            // Held on, the shortcut just chosen must not start anything.
            QTRY_VERIFY(!scene.typist.isDown(key));
            scene.typist.release(key);
            for (const int modifier : modifiers)
                scene.typist.release(modifier);
            scene.typist.tap(KEY_PAUSE);
            QTRY_VERIFY(scene.pauses > 0); // all that was typed before has arrived
            QCOMPARE(scene.starts.load(), 0);
            QCOMPARE(scene.field->text(), QString());
            QCOMPARE(scene.menuUses, 0);
            scene.chord(modifiers, key);
            QTRY_COMPARE(scene.starts.load(), 1);
            QCOMPARE(scene.chosen, shortcut);
        }
    }
};

QTEST_MAIN(ShortcutCaptureTest)
#include "ShortcutCaptureTest.moc"
