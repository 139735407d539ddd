#include "preferences/Migrations.h"

#include "preferences/Defaults.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "support/FakeMachine.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString groqAccount = u"groq_api_key"_s;
const QString openAIAccount = u"openai_api_key"_s;

QString compact(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

/// Preferences and keys of one user, before and after a launch.
struct Installation
{
    FakeDefaultsStore store;
    FakeSecretStore secrets;

    void launch()
    {
        Defaults defaults(store);
        Keychain keychain(secrets);
        Migrations(defaults, keychain).run();
    }
    void setPrefs(const QByteArray &json)
    {
        const QJsonObject object = QJsonDocument::fromJson(json).object();
        for (auto it = object.begin(); it != object.end(); ++it)
            store.values.insert(it.key(), it.value());
    }
    void setKey(const QString &account, const QByteArray &key)
    {
        if (!key.isEmpty())
            secrets.items.insert(account, key);
    }
    QString prefs() const
    {
        QJsonObject object;
        for (auto it = store.values.begin(); it != store.values.end(); ++it)
            object.insert(it.key(), it.value());
        return compact(object);
    }
    QByteArray keys() const { return secrets.items.value(groqAccount) + '|' + secrets.items.value(openAIAccount); }
};

} // namespace

class MigrationsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bringsAnInstallationUpToDate_data();
    void bringsAnInstallationUpToDate();
    void aFailingKeychainLosesNothing_data();
    void aFailingKeychainLosesNothing();
    void nothingIsDecidedBeforeTheKeyringAnswers_data();
    void nothingIsDecidedBeforeTheKeyringAnswers();
    void anyOldPreferenceMarksAnInstallation();
};

/// Once all steps are done, the three flags stand beside what `prefs` says.
void MigrationsTest::bringsAnInstallationUpToDate_data()
{
    QTest::addColumn<QByteArray>("prefsBefore");
    QTest::addColumn<QByteArray>("groqKey");
    QTest::addColumn<QByteArray>("openAIKey");
    QTest::addColumn<QByteArray>("prefsAfter");
    QTest::addColumn<QByteArray>("keysAfter");
    const auto row = [](const char *name, const QByteArray &prefs, const QByteArray &groq, const QByteArray &openAI,
                        const QByteArray &after,
                        const QByteArray &keys) { QTest::newRow(name) << prefs << groq << openAI << after << keys; };
    // who installed what
    row("fresh", "{}", "", "", R"({"provider":"sayvane"})", "|");
    row("fresh, retired model alone", R"({"chatModel":"llama-3.1-8b-instant"})", "", "", R"({"provider":"sayvane"})",
        "|");
    row("openai key", "{}", "", "sk-1", R"({"provider":"openai"})", "|sk-1");
    row("both keys", "{}", "gsk_1", "sk-1", R"({"provider":"groq"})", "gsk_1|sk-1");
    row("provider of a wrong type", R"({"provider":5})", "", "sk-1", R"({"provider":"openai"})", "|sk-1");
    row("provider chosen", R"({"provider":"openai","chatModel":""})", "gsk_1", "",
        R"({"provider":"openai","chatModel":""})", "gsk_1|");
    // models
    row("legacy models go", R"({"chatModel":" gpt-4o-mini\n","transcriptionModel":"whisper-1"})", "gsk_1", "",
        R"({"provider":"groq"})", "gsk_1|");
    row("blank models go", R"({"chatModel":"","transcriptionModel":"  "})", "gsk_1", "", R"({"provider":"groq"})",
        "gsk_1|");
    row("chosen models stay", R"({"chatModel":"GPT-4o-mini","transcriptionModel":"mine"})", "gsk_1", "",
        R"({"chatModel":"GPT-4o-mini","provider":"groq","transcriptionModel":"mine"})", "gsk_1|");
    row("models stay with openai", R"({"chatModel":"gpt-4o-mini","transcriptionModel":""})", "", "sk-1",
        R"({"chatModel":"gpt-4o-mini","provider":"openai","transcriptionModel":""})", "|sk-1");
    row("20b becomes 120b", R"({"provider":"groq","chatModel":" openai/gpt-oss-20b "})", "", "",
        R"({"provider":"groq","chatModel":"openai/gpt-oss-120b"})", "|");
    row("20b chosen later stays",
        R"({"provider":"groq","chatModel":"openai/gpt-oss-20b","groqChatDefaultMigratedTo120b":true})", "", "",
        R"({"provider":"groq","chatModel":"openai/gpt-oss-20b"})", "|");
    // language
    row("English becomes automatic", R"({"provider":"groq","language":" EN "})", "", "",
        R"({"provider":"groq","language":""})", "|");
    row("English chosen later stays", R"({"provider":"groq","language":"en","languageDefaultMigratedToAuto":true})", "",
        "", R"({"provider":"groq","language":"en"})", "|");
    // keys in the wrong place
    row("groq key under openai", "{}", "", " gsk_1\n", R"({"provider":"groq"})", "gsk_1|");
    row("openai key under groq", "{}", " sk-1 ", "", R"({"provider":"groq"})", "|sk-1");
    row("the same groq key twice", "{}", " gsk_1 ", "gsk_1", R"({"provider":"groq"})", " gsk_1 |");
    row("two groq keys", "{}", "gsk_1", "gsk_2", R"({"provider":"groq"})", "gsk_1|gsk_2");
    row("sorted out before", R"({"provider":"groq","keychainKeysMigrated":true})", "", "gsk_1",
        R"({"provider":"groq"})", "|gsk_1");
}

void MigrationsTest::bringsAnInstallationUpToDate()
{
    Installation user;
    QFETCH(QByteArray, prefsBefore);
    QFETCH(QByteArray, groqKey);
    QFETCH(QByteArray, openAIKey);
    QFETCH(QByteArray, prefsAfter);
    QFETCH(QByteArray, keysAfter);
    user.setPrefs(prefsBefore);
    user.setKey(groqAccount, groqKey);
    user.setKey(openAIAccount, openAIKey);
    QJsonObject expected = QJsonDocument::fromJson(prefsAfter).object();
    for (const auto flag :
         {u"keychainKeysMigrated", u"groqChatDefaultMigratedTo120b", u"languageDefaultMigratedToAuto"})
        expected.insert(QString::fromUtf16(flag), true);
    for (int launch = 0; launch < 3; ++launch) {
        user.launch();
        QCOMPARE(user.prefs(), compact(expected));
        QCOMPARE(user.keys(), keysAfter);
    }
    for (const auto accessibility : std::as_const(user.secrets.accessibilities))
        QCOMPARE(accessibility, Keychain::Accessibility::afterFirstUnlock);
}

void MigrationsTest::aFailingKeychainLosesNothing_data()
{
    using Break = void (*)(FakeSecretStore &);
    QTest::addColumn<Break>("breakIt");
    QTest::addColumn<QByteArray>("groqKey");
    QTest::addColumn<QByteArray>("openAIKey");
    QTest::addColumn<QByteArray>("keysOnceItWorks");
    const auto row = [](const char *name, Break breakIt, const QByteArray &groq, const QByteArray &openAI,
                        const QByteArray &keys) { QTest::newRow(name) << breakIt << groq << openAI << keys; };
    const Break refused = [](FakeSecretStore &s) { s.findStatus = SecretStatus::authFailed; };
    const Break noAdd = [](FakeSecretStore &s) { s.addStatus = SecretStatus::ioError; };
    const Break noRemove = [](FakeSecretStore &s) { s.removeStatus = SecretStatus::authFailed; };
    row("refused", refused, "sk-1", "", "|sk-1");
    row("cannot add groq", noAdd, "", "gsk_1", "gsk_1|");
    row("cannot remove the copy", noRemove, "gsk_1", "gsk_1", "gsk_1|");
    row("cannot remove the moved key", noRemove, "", "gsk_1", "gsk_1|");
}

void MigrationsTest::aFailingKeychainLosesNothing()
{
    Installation user;
    QFETCH(QByteArray, groqKey);
    QFETCH(QByteArray, openAIKey);
    user.setKey(groqAccount, groqKey);
    user.setKey(openAIAccount, openAIKey);
    user.setPrefs(R"({"chatModel":"gpt-4o-mini"})");
    const QByteArray before = user.keys();
    using Break = void (*)(FakeSecretStore &);
    QFETCH(Break, breakIt);
    breakIt(user.secrets);
    user.launch();
    QCOMPARE(user.keys(), before);
    QCOMPARE(user.store.value(u"provider"_s).toString(), u"groq"_s);
    QVERIFY(!user.store.values.contains(u"chatModel"_s));
    QVERIFY(!user.store.values.contains(u"keychainKeysMigrated"_s));
    // The next launch tries again.
    FakeSecretStore working;
    working.items = user.secrets.items.all();
    Defaults defaults(user.store);
    Keychain keychain(working);
    Migrations(defaults, keychain).run();
    QTEST(working.items.value(groqAccount) + '|' + working.items.value(openAIAccount), "keysOnceItWorks");
    QCOMPARE(user.store.value(u"keychainKeysMigrated"_s), QJsonValue(true));
}

void MigrationsTest::nothingIsDecidedBeforeTheKeyringAnswers_data()
{
    QTest::addColumn<int32_t>("trouble"); // success: it hangs
    QTest::addColumn<QByteArray>("openAIKey");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    const auto row = [](const char *name, int32_t trouble, const QByteArray &key, const QString &before,
                        const QString &after) { QTest::newRow(name) << trouble << key << before << after; };
    row("locked, new user", SecretStatus::interactionNotAllowed, "", {}, u"sayvane"_s);
    row("locked, own key", SecretStatus::interactionNotAllowed, "sk-1", {}, u"openai"_s);
    row("in trouble, own key", SecretStatus::ioError, "sk-1", {}, u"openai"_s);
    row("hanging, new user", SecretStatus::success, "", {}, u"sayvane"_s);
    row("hanging, own key", SecretStatus::success, "sk-1", {}, u"openai"_s);
    row("not there: an empty one", SecretStatus::notAvailable, "", u"sayvane"_s, u"sayvane"_s);
}

void MigrationsTest::nothingIsDecidedBeforeTheKeyringAnswers()
{
    QFETCH(int32_t, trouble);
    QFETCH(QByteArray, openAIKey);
    QFETCH(QString, after);
    Installation user;
    user.setKey(openAIAccount, openAIKey);
    user.secrets.findStatus = trouble;
    user.secrets.setHangs(trouble == SecretStatus::success);
    Keychain keychain(user.secrets);
    Defaults defaults(user.store);
    Prefs prefs(defaults, u"https://service.test"_s);
    prefs.registerDefaults(keychain);
    QTEST(user.store.value(u"provider"_s).toString(), "before");
    QVERIFY(prefs.provider() == Provider::sayvane && prefs.transcriptionModel().isEmpty());
    QVERIFY(!user.store.values.contains(u"keychainKeysMigrated"_s));
    defaults.set(u"soundsEnabled"_s, false);          // by the user, meanwhile: no mark of an earlier version
    if (!user.store.values.contains(u"provider"_s)) { // nor is it one at the next start
        Installation later;
        later.store.values = user.store.values;
        later.setKey(openAIAccount, openAIKey);
        later.launch();
        QCOMPARE(later.store.value(u"provider"_s).toString(), after);
        QVERIFY(!later.store.values.contains(u"firstStartUndecided"_s));
    }
    user.secrets.setHangs(false);
    user.secrets.setTrouble(SecretStatus::success);
    QCOMPARE(user.store.value(u"provider"_s).toString(), after);
    QCOMPARE(prefs.transcriptionModel(), Prefs::defaultModel(prefs.provider(), ModelPurpose::transcription));
    QVERIFY(user.store.values.contains(u"keychainKeysMigrated"_s));
}

void MigrationsTest::anyOldPreferenceMarksAnInstallation()
{
    for (const QString &key : {u"hotkeySpec"_s, u"languageDefaultMigratedToAuto"_s, u"accountEmail"_s}) {
        Installation user;
        user.store.values.insert(key, 7); // a value of whatever type
        user.launch();
        QCOMPARE(user.store.value(u"provider"_s).toString(), key == u"accountEmail" ? u"sayvane"_s : u"groq"_s);
    }
}

QTEST_APPLESS_MAIN(MigrationsTest)
#include "MigrationsTest.moc"
