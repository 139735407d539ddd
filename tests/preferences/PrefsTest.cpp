#include "preferences/Prefs.h"

#include "preferences/Defaults.h"
#include "preferences/HotkeySpec.h"
#include "preferences/Keychain.h"
#include "support/FakeMachine.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

struct Fixture
{
    FakeDefaultsStore store;
    FakeSecretStore secrets;
    Keychain keychain{secrets};
    Defaults defaults{store};
    Prefs prefs{defaults, u"https://service.test"_s};
};

} // namespace

class PrefsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void knowsAUsableServiceAddress_data();
    void knowsAUsableServiceAddress();
    void readsTheModel();
    void registersDefaultsWithoutStoringThem();
    void aValueOfAWrongTypeIsNone();
    void storesTheEndOfAnswerMode();
    void announcesOnlyChanges();

private:
    std::unique_ptr<Fixture> m;
};

void PrefsTest::knowsAUsableServiceAddress_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<std::optional<QString>>("address");
    const auto row = [](const char *name, const QString &text, const std::optional<QString> &address = {}) {
        QTest::newRow(name) << text << address;
    };
    row("spaces and three slashes", u" \thttps://a.test///\n"_s, u"https://a.test"_s);
    row("empty query and fragment", u"https://a.test/?#"_s, u"https://a.test/?#"_s);
    row("http", u"http://a.test"_s);
    row("no host", u"https://"_s);
    row("query", u"https://a.test?x=1"_s);
    row("fragment", u"https://a.test#x"_s);
    row("a space inside", u"https://a .test"_s);
}

void PrefsTest::knowsAUsableServiceAddress()
{
    QFETCH(QString, text);
    QFETCH(std::optional<QString>, address);
    QCOMPARE(Prefs::validAccountBaseURL(text), address);
    m->store.values.insert(u"accountBaseURL"_s, text);
    QCOMPARE(m->prefs.accountBaseURL(), address.value_or(u"https://service.test"_s));
}

void PrefsTest::readsTheModel()
{
    QCOMPARE(m->prefs.chatModel(), u""_s);
    m->store.values.insert(u"provider"_s, u"Groq"_s);
    QCOMPARE(m->prefs.chatModel(), u""_s);
    m->store.values.insert(u"provider"_s, u"groq"_s);
    QCOMPARE(m->prefs.transcriptionModel(), u"whisper-large-v3-turbo"_s);
    m->store.values.insert(u"provider"_s, u"openai"_s);
    QCOMPARE(m->prefs.chatModel(), u"gpt-4o-mini"_s);
    m->prefs.registerDefaults(m->keychain);
    QCOMPARE(m->prefs.chatModel(), u"gpt-4o-mini"_s);
    m->store.values.insert(u"chatModel"_s, u" mine "_s);
    QCOMPARE(m->prefs.chatModel(), u" mine "_s);
    m->store.values.insert(u"chatModel"_s, u""_s);
    QCOMPARE(m->prefs.chatModel(), u""_s);
}

void PrefsTest::registersDefaultsWithoutStoringThem()
{
    m->prefs.registerDefaults(m->keychain);
    QStringList stored = m->store.values.keys();
    stored.sort();
    QCOMPARE(stored, (QStringList{u"groqChatDefaultMigratedTo120b"_s, u"keychainKeysMigrated"_s,
                                  u"languageDefaultMigratedToAuto"_s, u"provider"_s}));
    QVERIFY(m->prefs.isEnabled(u"cleanupEnabled"_s));
    QVERIFY(!m->prefs.isEnabled(u"advancedExpanded"_s));
    QCOMPARE(m->defaults.text(u"chatModel"_s), u""_s);
    QVERIFY(HotkeySpec::decode(m->defaults.text(u"hotkeySpec"_s)) == HotkeySpec());
    QCOMPARE(m->defaults.text(u"accountEmail"_s), std::nullopt);
}

void PrefsTest::aValueOfAWrongTypeIsNone()
{
    const QJsonValue stored(u"false"_s);
    m->store.values.insert(u"cleanupEnabled"_s, stored);
    QVERIFY(!m->prefs.isEnabled(u"cleanupEnabled"_s));
    m->prefs.registerDefaults(m->keychain);
    QVERIFY(m->prefs.isEnabled(u"cleanupEnabled"_s));
    QCOMPARE(m->store.value(u"cleanupEnabled"_s), stored); // and nobody overwrites it
}

void PrefsTest::storesTheEndOfAnswerMode()
{
    const QDateTime end(QDate(2026, 3, 1), QTime(10, 15, 42, 500), QTimeZone("Asia/Kolkata"));
    m->prefs.setLabsAnswerModeExpiresAt(end);
    // 978307200 is the start of 2001 in seconds of 1970.
    QCOMPARE(m->store.value(u"labsAnswerModeExpiresAt"_s).toDouble(),
             static_cast<double>(end.toSecsSinceEpoch() - 978307200) + 0.5);
    m->prefs.setLabsAnswerModeExpiresAt(std::nullopt);
    QVERIFY(!m->store.values.contains(u"labsAnswerModeExpiresAt"_s));
}

void PrefsTest::announcesOnlyChanges()
{
    QSignalSpy changes(&m->defaults, &Defaults::changed);
    m->defaults.set(u"language"_s, u"gu"_s);
    m->defaults.set(u"language"_s, u"gu"_s);
    m->defaults.remove(u"vocabulary"_s);
    QCOMPARE(changes.size(), 1);
    m->defaults.remove(u"language"_s);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.last().first().toString(), u"language"_s);
}

QTEST_APPLESS_MAIN(PrefsTest)
#include "PrefsTest.moc"
