#include "settings/HotkeySpec.h"

#include "platform/KeyTap.h"

#include <QTest>

using namespace Qt::StringLiterals;

class HotkeySpecTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheStoredForm_data()
    {
        QTest::addColumn<std::optional<QString>>("json");
        QTest::addColumn<HotkeySpec>("spec");
        const auto row = [](const char *name, const std::optional<QString> &json,
                            const HotkeySpec &spec = {}) { QTest::newRow(name) << json << spec; };
        const HotkeySpec all{
            .keyCode = 130, .fn = false, .command = true, .option = true, .control = true, .shift = true};
        row("absent", std::nullopt);
        row("empty", u""_s);
        row("no members", u"{}"_s);
        row("in order",
            u"{\"keyCode\":130,\"fn\":false,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s,
            all);
        row("another order, spaces and an extra member",
            u" {\"shift\":true,\"x\":[1],\"control\":true,\"option\":true,\"command\":true,\"fn\":false, \"keyCode\" : 130} "_s,
            all);
        row("a whole number written as a fraction",
            u"{\"keyCode\":130.0,\"fn\":false,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s,
            all);
        row("without shift",
            u"{\"keyCode\":1,\"fn\":false,\"command\":true,\"option\":true,\"control\":true}"_s);
        row("without the key",
            u"{\"fn\":false,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s);
        row("a number for a boolean",
            u"{\"keyCode\":1,\"fn\":0,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s);
        row("null for a boolean",
            u"{\"keyCode\":1,\"fn\":null,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s);
        row("text for the key",
            u"{\"keyCode\":\"1\",\"fn\":false,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s);
        row("a fraction for the key",
            u"{\"keyCode\":1.5,\"fn\":false,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s);
        row("a key beyond 64 bits",
            u"{\"keyCode\":1e30,\"fn\":false,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s);
        row("cut short",
            u"{\"keyCode\":1,\"fn\":false,\"command\":true,\"option\":true,\"control\":true,\"shift\":tr"_s);
        row("a list", u"[1,false,true,true,true,true]"_s);
        row("not JSON", u"Fn + Space"_s);
    }
    void readsTheStoredForm()
    {
        QFETCH(std::optional<QString>, json);
        QFETCH(HotkeySpec, spec);
        QVERIFY2(HotkeySpec::decode(json) == spec, qPrintable(HotkeySpec::decode(json).jsonString()));
    }

    void isShownAsPeopleReadIt_data()
    {
        QTest::addColumn<HotkeySpec>("spec");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("json");
        QTest::newRow("default")
            << HotkeySpec() << u"Fn + Space"_s
            << u"{\"keyCode\":49,\"fn\":true,\"command\":false,\"option\":false,\"control\":false,\"shift\":false}"_s;
        QTest::newRow("command shift D")
            << HotkeySpec{.keyCode = 2, .fn = false, .command = true, .shift = true} << u"⇧⌘D"_s
            << u"{\"keyCode\":2,\"fn\":false,\"command\":true,\"option\":false,\"control\":false,\"shift\":true}"_s;
        QTest::newRow("fn control F5")
            << HotkeySpec{.keyCode = 96, .fn = true, .control = true} << u"Fn + ⌃F5"_s
            << u"{\"keyCode\":96,\"fn\":true,\"command\":false,\"option\":false,\"control\":true,\"shift\":false}"_s;
        QTest::newRow("everything, unnamed key")
            << HotkeySpec{.keyCode = 130,
                          .fn = true,
                          .command = true,
                          .option = true,
                          .control = true,
                          .shift = true}
            << u"Fn + ⌃⌥⇧⌘Key 130"_s
            << u"{\"keyCode\":130,\"fn\":true,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s;
        QTest::newRow("negative key")
            << HotkeySpec{.keyCode = -1, .fn = false} << u"Key -1"_s
            << u"{\"keyCode\":-1,\"fn\":false,\"command\":false,\"option\":false,\"control\":false,\"shift\":false}"_s;
    }
    void isShownAsPeopleReadIt()
    {
        QFETCH(HotkeySpec, spec);
        QTEST(spec.displayString(), "shown");
        QTEST(spec.jsonString(), "json");
        QVERIFY(HotkeySpec::decode(spec.jsonString()) == spec);
    }

    void showsTheModifiersHeld_data()
    {
        QTest::addColumn<quint64>("flags");
        QTest::addColumn<QString>("shown");
        QTest::newRow("nothing") << quint64(0) << u""_s;
        QTest::newRow("caps lock and a side bit") << quint64(0x10008) << u""_s;
        QTest::newRow("fn") << quint64(0x800000) << u"Fn"_s;
        QTest::newRow("fn and command") << quint64(0x900000) << u"Fn + ⌘"_s;
        QTest::newRow("all but fn") << quint64(0x1E0000) << u"⌃⌥⇧⌘"_s;
        QTest::newRow("all") << quint64(0x9E0000) << u"Fn + ⌃⌥⇧⌘"_s;
    }
    void showsTheModifiersHeld()
    {
        QFETCH(quint64, flags);
        QTEST(HotkeySpec::modifierDisplay(flags), "shown");
    }

    void namesEveryKeyOnce()
    {
        QStringList names;
        int functionKeys = 0;
        for (qint64 code = -1; code < 300; ++code) {
            if (const QString name = HotkeySpec::keyNameFor(code); !name.startsWith(u"Key "_s))
                names.append(name);
            const HotkeySpec spec{.keyCode = code};
            const QString name = HotkeySpec::keyNameFor(code);
            const bool isNamedF = name.size() > 1 && name.startsWith(u'F') && name.at(1).isDigit();
            QCOMPARE(spec.isFunctionKey(), isNamedF);
            functionKeys += spec.isFunctionKey() ? 1 : 0;
        }
        QCOMPARE(names.size(), 100);
        QCOMPARE(names.removeDuplicates(), 0);
        QCOMPARE(functionKeys, 20);
        QCOMPARE(HotkeySpec::keyNameFor(10), u"Key 10"_s);
        QCOMPARE(HotkeySpec::keyNameFor(123) + HotkeySpec::keyNameFor(124) + HotkeySpec::keyNameFor(125) +
                     HotkeySpec::keyNameFor(126),
                 u"←→↓↑"_s);
    }
};

QTEST_APPLESS_MAIN(HotkeySpecTest)
#include "HotkeySpecTest.moc"
