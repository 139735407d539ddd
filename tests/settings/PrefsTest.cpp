#include "settings/Prefs.h"

#include "settings/Defaults.h"
#include "settings/HotkeySpec.h"
#include "settings/Keychain.h"
#include "support/FakeMachine.h"

#include <QJsonArray>
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
    void readsTheModel_data();
    void readsTheModel();
    void registersDefaultsWithoutStoringThem();
    void aValueOfAWrongTypeIsNone_data();
    void aValueOfAWrongTypeIsNone();
    void storesModelsTrimmed();
    void storesTheEmailTrimmed();
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
    row("plain", u"https://a.test"_s, u"https://a.test"_s);
    row("spaces and three slashes", u" \thttps://a.test///\n"_s, u"https://a.test"_s);
    row("letter case stays", u"HTTPS://A.Test/Path/"_s, u"HTTPS://A.Test/Path"_s);
    row("port, path and user", u"https://u@a.test:8443/v/1"_s, u"https://u@a.test:8443/v/1"_s);
    row("IPv6", u"https://[::1]:8443"_s, u"https://[::1]:8443"_s);
    row("empty query and fragment", u"https://a.test/?#"_s, u"https://a.test/?#"_s);
    row("empty", u""_s);
    row("only slashes", u" /// "_s);
    row("http", u"http://a.test"_s);
    row("no scheme", u"a.test"_s);
    row("no host", u"https://"_s);
    row("no host but a path", u"https:///v1"_s);
    row("no host but a port", u"https://:443"_s);
    row("query", u"https://a.test?x=1"_s);
    row("fragment", u"https://a.test#x"_s);
    row("a space inside", u"https://a .test"_s);
    row("a port beyond all ports", u"https://a.test:99999"_s);
    row("a broken escape", u"https://a.test/%zz"_s);
}

void PrefsTest::knowsAUsableServiceAddress()
{
    QFETCH(QString, text);
    QFETCH(std::optional<QString>, address);
    QCOMPARE(Prefs::validAccountBaseURL(text), address);
    m->store.values.insert(u"accountBaseURL"_s, text);
    QCOMPARE(m->prefs.accountBaseURL(), address.value_or(u"https://service.test"_s));
}

void PrefsTest::readsTheModel_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<QJsonValue>("stored");
    QTest::addColumn<QString>("speech");
    QTest::addColumn<QString>("chat");
    const QJsonValue none(QJsonValue::Undefined);
    QTest::newRow("sayvane") << u"sayvane"_s << none << u""_s << u""_s;
    QTest::newRow("groq") << u"groq"_s << none << u"whisper-large-v3-turbo"_s << u"openai/gpt-oss-120b"_s;
    QTest::newRow("openai") << u"openai"_s << none << u"gpt-4o-mini-transcribe"_s << u"gpt-4o-mini"_s;
    QTest::newRow("stored") << u"groq"_s << QJsonValue(u" mine "_s) << u" mine "_s << u" mine "_s;
    QTest::newRow("stored empty") << u"groq"_s << QJsonValue(u""_s) << u""_s << u""_s;
    QTest::newRow("unknown provider") << u"Groq"_s << none << u""_s << u""_s;
    QTest::newRow("of a wrong type") << u"openai"_s << QJsonValue(true) << u"gpt-4o-mini-transcribe"_s
                                     << u"gpt-4o-mini"_s;
}

void PrefsTest::readsTheModel()
{
    QFETCH(QString, provider);
    QFETCH(QJsonValue, stored);
    m->store.values.insert(u"provider"_s, provider);
    if (!stored.isUndefined()) {
        m->store.values.insert(u"chatModel"_s, stored);
        m->store.values.insert(u"transcriptionModel"_s, stored);
    }
    QTEST(m->prefs.transcriptionModel(), "speech");
    QTEST(m->prefs.chatModel(), "chat");
    m->prefs.registerDefaults(m->keychain);
    QTEST(m->prefs.transcriptionModel(), "speech");
    QTEST(m->prefs.chatModel(), "chat");
}

void PrefsTest::registersDefaultsWithoutStoringThem()
{
    m->prefs.registerDefaults(m->keychain);
    QStringList stored = m->store.values.keys();
    stored.sort();
    QCOMPARE(stored, (QStringList{u"groqChatDefaultMigratedTo120b"_s, u"keychainKeysMigrated"_s,
                                  u"languageDefaultMigratedToAuto"_s, u"provider"_s}));
    for (const auto key : {u"cleanupEnabled", u"restoreClipboard", u"soundsEnabled"})
        QVERIFY(m->prefs.isEnabled(QString::fromUtf16(key)));
    for (const auto key : {u"showDashboardOnLaunch", u"advancedExpanded"})
        QVERIFY(!m->prefs.isEnabled(QString::fromUtf16(key)));
    for (const auto key : {u"language", u"transcriptionModel", u"chatModel"})
        QCOMPARE(m->defaults.text(QString::fromUtf16(key)), u""_s);
    QCOMPARE(m->defaults.text(u"provider"_s), u"sayvane"_s);
    QCOMPARE(m->defaults.text(u"accountBaseURL"_s), u"https://service.test"_s);
    QCOMPARE(m->prefs.vocabulary().split(u',').size(), 3);
    QVERIFY(HotkeySpec::decode(m->defaults.text(u"hotkeySpec"_s)) == HotkeySpec());
    QCOMPARE(m->defaults.text(u"accountEmail"_s), std::nullopt);
}

void PrefsTest::aValueOfAWrongTypeIsNone_data()
{
    QTest::addColumn<QJsonValue>("stored");
    QTest::newRow("number") << QJsonValue(0);
    QTest::newRow("text") << QJsonValue(u"false"_s);
    QTest::newRow("null") << QJsonValue(QJsonValue::Null);
    QTest::newRow("list") << QJsonValue(QJsonArray{false});
}

void PrefsTest::aValueOfAWrongTypeIsNone()
{
    QFETCH(QJsonValue, stored);
    m->store.values.insert(u"cleanupEnabled"_s, stored);
    QVERIFY(!m->prefs.isEnabled(u"cleanupEnabled"_s));
    m->prefs.registerDefaults(m->keychain);
    QVERIFY(m->prefs.isEnabled(u"cleanupEnabled"_s));
    QCOMPARE(m->store.value(u"cleanupEnabled"_s), stored); // and nobody overwrites it
}

void PrefsTest::storesModelsTrimmed()
{
    m->prefs.setModel(u" a/b\n"_s, ModelPurpose::chat);
    m->prefs.setModel(u"c"_s, ModelPurpose::transcription);
    m->prefs.setModel(u" \n"_s, ModelPurpose::chat);
    QCOMPARE(m->store.value(u"chatModel"_s).toString(), u"a/b"_s);
    QCOMPARE(m->store.value(u"transcriptionModel"_s).toString(), u"c"_s);
}

void PrefsTest::storesTheEmailTrimmed()
{
    QCOMPARE(m->prefs.accountEmail(), QString());
    m->prefs.setAccountEmail(u" a@b.test\n"_s);
    QCOMPARE(m->store.value(u"accountEmail"_s).toString(), u"a@b.test"_s);
    m->store.values.insert(u"accountEmail"_s, u"\tc@d.test "_s);
    QCOMPARE(m->prefs.accountEmail(), u"c@d.test"_s);
    m->prefs.setAccountEmail(u" \n"_s);
    QVERIFY(!m->store.values.contains(u"accountEmail"_s));
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
