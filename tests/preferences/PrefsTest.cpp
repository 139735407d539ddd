#include "preferences/Prefs.h"

#include "base/KeyTap.h"
#include "preferences/Keychain.h"
#include "preferences/SpokenLanguage.h"
#include "support/FakeMachine.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class PrefsTest final : public QObject
{
    Q_OBJECT

    FakeDefaultsStore store;
    FakeSecretStore secrets;
    Keychain keychain{secrets};
    Prefs prefs{store, u"https://service.test"_s};

private Q_SLOTS:
    void init() { store.values.clear(); }

    void readsTheServiceAddress()
    {
        for (const QString &text : {u"http://a.test"_s, u"https://"_s, u"https://a.test?x=1"_s, u"https://a.test#x"_s,
                                    u"https://a .test"_s}) {
            store.values.insert(u"accountBaseURL"_s, text);
            QCOMPARE(prefs.accountBaseURL(), u"https://service.test"_s);
        }
        QCOMPARE(Prefs::validAccountBaseURL(u" \thttps://a.test///\n"_s), u"https://a.test"_s);
        QCOMPARE(Prefs::validAccountBaseURL(u"https://a.test/?#"_s), u"https://a.test/?#"_s);
    }

    void readsTheModel()
    {
        const auto provider = [this](const QString &raw) { store.values.insert(u"provider"_s, raw); };
        provider(u"Groq"_s);
        QCOMPARE(prefs.chatModel(), u""_s);
        provider(u"groq"_s);
        QCOMPARE(prefs.transcriptionModel(), u"whisper-large-v3-turbo"_s);
        Prefs launched(store, {});
        launched.registerDefaults(keychain);
        provider(u"openai"_s);
        QCOMPARE(prefs.chatModel(), u"gpt-4o-mini"_s);
        QCOMPARE(launched.chatModel(), u"openai/gpt-oss-120b"_s); // until the next launch
        store.values.insert(u"chatModel"_s, u" mine "_s);
        QCOMPARE(launched.chatModel(), u" mine "_s);
        launched.setModel(u" \n"_s, ModelPurpose::chat);
        store.values.insert(u"transcriptionModel"_s, u""_s);
        QCOMPARE(launched.chatModel() + launched.transcriptionModel(), u" mine "_s);
    }

    void defaultsAreNotStored()
    {
        QVERIFY(prefs.cleanupEnabled() && prefs.restoreClipboard() && prefs.soundsEnabled());
        QVERIFY(!prefs.advancedExpanded() && !prefs.showDashboardOnLaunch() && !prefs.keepFailedRecordings());
        QCOMPARE(prefs.vocabulary(), u"Sayvane, Groq, OpenAI"_s);
        QVERIFY(prefs.hotkeySpec() == HotkeySpec() && !prefs.labsAnswerModeExpiresAt());
        QVERIFY(store.values.isEmpty());
    }

    void aValueOfAWrongTypeIsNone()
    {
        for (const QString &key : {u"cleanupEnabled"_s, u"language"_s, u"provider"_s, u"hotkeySpec"_s, u"vocabulary"_s})
            store.values.insert(key, 7);
        QVERIFY(prefs.cleanupEnabled() && prefs.language().isEmpty() && prefs.provider() == Provider::sayvane);
        QVERIFY(prefs.hotkeySpec() == HotkeySpec() && prefs.vocabulary() == u"Sayvane, Groq, OpenAI");
        QCOMPARE(store.value(u"cleanupEnabled"_s), QJsonValue(7)); // and nobody overwrites it
    }

    void storesAndRemoves()
    {
        const QDateTime end(QDate(2026, 3, 1), QTime(10, 15, 42, 500), QTimeZone("Asia/Kolkata"));
        prefs.labsAnswerModeExpiresAt.set(end);
        // 978307200 is the start of 2001 in seconds of 1970.
        QCOMPARE(store.value(u"labsAnswerModeExpiresAt"_s).toDouble(),
                 double(end.toSecsSinceEpoch() - 978307200) + 0.5);
        QCOMPARE(prefs.labsAnswerModeExpiresAt(), end);
        prefs.labsAnswerModeExpiresAt.set(std::nullopt);
        prefs.accountEmail.set(u" a@b.test\n"_s);
        QCOMPARE(store.value(u"accountEmail"_s).toString(), u"a@b.test"_s);
        prefs.accountEmail.set(u" "_s);
        QVERIFY(store.values.isEmpty());
    }

    void announcesChangesAlone()
    {
        QSignalSpy sounds(&prefs, &Prefs::soundsEnabledChanged);
        QSignalSpy changes(&prefs, &Prefs::changed);
        prefs.language.set(u" gu\t"_s);
        prefs.language.set(u" gu\t"_s);
        prefs.vocabularyTyped.remove();
        QCOMPARE(changes.size(), 1);
        QCOMPARE(prefs.language(), u"gu"_s);
        QVERIFY(changes.takeLast().first() == u"language"_s && sounds.isEmpty());
        // as a page does it
        QVERIFY(prefs.setProperty("soundsEnabled", false) && prefs.setProperty("vocabulary", u" a, "_s));
        QVERIFY(sounds.size() == 1 && store.value(u"soundsEnabled"_s) == false && !prefs.soundsEnabled());
        QCOMPARE(prefs.property("vocabulary").toString() + prefs.vocabulary(), u" a, a,"_s);
    }

    void readsAShortcut()
    {
        const QString json = HotkeySpec::of(130, KeyFlags::compared).jsonString();
        QCOMPARE(json,
                 u"{\"keyCode\":130,\"fn\":true,\"command\":true,\"option\":true,\"control\":true,\"shift\":true}"_s);
        const auto read = [&](const QString &part, const QString &instead) {
            return HotkeySpec::decode(QString(json).replace(part, instead)).displayString();
        };
        QCOMPARE(read(u"{"_s, u" { \"x\":[1], "_s), u"Fn + ⌃⌥⇧⌘Key 130"_s);
        QCOMPARE(read(u"130"_s, u"122.0"_s), u"Fn + ⌃⌥⇧⌘F1"_s);
        QCOMPARE(read(u"130"_s, u"1.5"_s), u"Fn + Space"_s);
        QCOMPARE(read(u"\"fn\":true"_s, u"\"fn\":1"_s), u"Fn + Space"_s);
        QCOMPARE(read(u",\"shift\":true"_s, {}), u"Fn + Space"_s);
        for (const quint64 flag :
             {KeyFlags::fn, KeyFlags::command, KeyFlags::option, KeyFlags::control, KeyFlags::shift}) {
            QCOMPARE(HotkeySpec::decode(HotkeySpec::of(130, flag).jsonString()).requiredFlags(), flag);
        }
    }

    void namesEveryKeyOnce()
    {
        QCOMPARE(HotkeySpec::modifierDisplay(0x10008), u""_s); // caps lock and a side bit
        QCOMPARE(HotkeySpec::modifierDisplay(0x800000) + HotkeySpec::modifierDisplay(0x9E0000), u"FnFn + ⌃⌥⇧⌘"_s);
        QStringList names;
        int functionKeys = 0;
        for (qint64 code = -1; code < 300; ++code) {
            if (const QString name = HotkeySpec::keyNameFor(code); !name.startsWith(u"Key "_s))
                names.append(name);
            functionKeys += HotkeySpec{.keyCode = code}.isFunctionKey() ? 1 : 0;
        }
        QVERIFY(names.size() == 100 && functionKeys == 20);
        QCOMPARE(names.removeDuplicates(), 0);
    }

    void namesALanguage()
    {
        QCOMPARE(SpokenLanguage::nameFor(u" \n"_s) + SpokenLanguage::nameFor(u" GU\n"_s), u"Auto-detectGujarati"_s);
        QCOMPARE(SpokenLanguage::nameFor(u" xx "_s), u"XX"_s);
        QVERIFY(SpokenLanguage::isListed(u""_s) && !SpokenLanguage::isListed(u" GU\n"_s));
    }
};

QTEST_APPLESS_MAIN(PrefsTest)
#include "PrefsTest.moc"
