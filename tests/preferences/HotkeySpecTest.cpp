#include "preferences/HotkeySpec.h"

#include "base/KeyTap.h"

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
        const auto row = [](const char *name, const std::optional<QString> &json, const HotkeySpec &spec = {}) {
            QTest::newRow(name) << json << spec;
        };
        const HotkeySpec all{
            .keyCode = 130, .fn = false, .command = true, .option = true, .control = true, .shift = true};
        row("absent", std::nullopt);
        row("another order, spaces and an extra member",
            u" {\"shift\":true,\"x\":[1],\"control\":true,\"option\":true,\"command\":true,\"fn\":false, \"keyCode\" : 130} "_s,
            all);
        row("a whole number written as a fraction",
            u"{\"keyCode\":130.0,\"fn\":false,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s,
            all);
        row("without shift", u"{\"keyCode\":1,\"fn\":false,\"command\":true,\"option\":true,\"control\":true}"_s);
        row("a number for a boolean",
            u"{\"keyCode\":1,\"fn\":0,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s);
        row("a fraction for the key",
            u"{\"keyCode\":1.5,\"fn\":false,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s);
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
        QTest::newRow("everything, unnamed key")
            << HotkeySpec{.keyCode = 130, .fn = true, .command = true, .option = true, .control = true, .shift = true}
            << u"Fn + ⌃⌥⇧⌘Key 130"_s
            << u"{\"keyCode\":130,\"fn\":true,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s;
    }
    void isShownAsPeopleReadIt()
    {
        QFETCH(HotkeySpec, spec);
        QTEST(spec.displayString(), "shown");
        QTEST(spec.jsonString(), "json");
        QVERIFY(HotkeySpec::decode(spec.jsonString()) == spec);
    }

    void showsTheModifiersHeld()
    {
        QCOMPARE(HotkeySpec::modifierDisplay(0x10008), u""_s); // caps lock and a side bit
        QCOMPARE(HotkeySpec::modifierDisplay(0x800000), u"Fn"_s);
        QCOMPARE(HotkeySpec::modifierDisplay(0x9E0000), u"Fn + ⌃⌥⇧⌘"_s);
    }

    void namesEveryKeyOnce()
    {
        QStringList names;
        int functionKeys = 0;
        for (qint64 code = -1; code < 300; ++code) {
            const HotkeySpec spec{.keyCode = code};
            const QString name = HotkeySpec::keyNameFor(code);
            if (!name.startsWith(u"Key "_s))
                names.append(name);
            const bool isNamedF = name.size() > 1 && name.startsWith(u'F') && name.at(1).isDigit();
            QCOMPARE(spec.isFunctionKey(), isNamedF);
            functionKeys += spec.isFunctionKey() ? 1 : 0;
        }
        QCOMPARE(names.size(), 100);
        QCOMPARE(names.removeDuplicates(), 0);
        QCOMPARE(functionKeys, 20);
    }
};

QTEST_APPLESS_MAIN(HotkeySpecTest)
#include "HotkeySpecTest.moc"
