#include "preferences/Migrations.h"

#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "support/FakeMachine.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString marks =
    u"keychainKeysMigrated=true;groqChatDefaultMigratedTo120b=true;languageDefaultMigratedToAuto=true;"_s;

/// Preferences and keys of one user, before and after a launch.
struct Installation
{
    FakeDefaultsStore store;
    FakeSecretStore secrets;

    explicit Installation(const QString &facts) { change(facts); }

    /// Takes facts such as "language=en;openai_api_key=sk-1"; one without a value is removed.
    void change(const QString &facts)
    {
        for (const QString &fact : facts.split(u';', Qt::SkipEmptyParts)) {
            const QString name = fact.section(u'=', 0, 0);
            const QString value = fact.section(u'=', 1);
            if (fact == name)
                store.values.remove(name), secrets.items.remove(name);
            else if (name.endsWith(u"_api_key"))
                secrets.items.insert(name, value.toUtf8());
            else
                store.values.insert(name, value == u"true" ? QJsonValue(true) : value == u"7" ? 7 : QJsonValue(value));
        }
    }
    QStringList facts() const
    {
        QStringList facts;
        for (const auto [key, value] : store.values.asKeyValueRange())
            facts.append(key + u'=' + value.toVariant().toString());
        for (const auto [account, key] : secrets.items.all().asKeyValueRange())
            facts.append(account + u'=' + QString::fromUtf8(key));
        facts.sort();
        return facts;
    }
    void launch()
    {
        Prefs prefs(store, {});
        Keychain keychain(secrets);
        Migrations(prefs, keychain).run();
    }
    QString provider() const { return store.value(u"provider"_s).toString(); }
};

} // namespace

class MigrationsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bringsAnInstallationUpToDate()
    {
        const QList<std::pair<QString, QString>> cases{
            // who installed what
            {u""_s, u"provider=sayvane"_s},
            {u"chatModel=llama-3.1-8b-instant"_s, u"chatModel;provider=sayvane"_s},
            {u"openai_api_key=sk-1"_s, u"provider=openai"_s},
            {u"groq_api_key=gsk_1;openai_api_key=sk-1"_s, u"provider=groq"_s},
            {u"provider=7;openai_api_key=sk-1"_s, u"provider=openai"_s},
            {u"provider=nobody;openai_api_key=sk-1"_s, u""_s},
            {u"provider=openai;chatModel=;groq_api_key=gsk_1"_s, u""_s},
            {u"hotkeySpec=7"_s, u"provider=groq"_s}, // a value of whatever type
            {u"languageDefaultMigratedToAuto=7"_s, u"provider=groq"_s},
            {u"accountEmail=a"_s, u"provider=sayvane"_s},
            // models
            {u"chatModel= gpt-4o-mini\n;transcriptionModel=whisper-1;groq_api_key=gsk_1"_s,
             u"chatModel;transcriptionModel;provider=groq"_s},
            {u"chatModel=;transcriptionModel=  "_s, u"chatModel;transcriptionModel;provider=groq"_s},
            {u"chatModel=GPT-4o-mini;transcriptionModel=mine"_s, u"provider=groq"_s},
            {u"chatModel=gpt-4o-mini;transcriptionModel=;openai_api_key=sk-1"_s, u"provider=openai"_s},
            {u"provider=groq;chatModel= openai/gpt-oss-20b "_s, u"chatModel=openai/gpt-oss-120b"_s},
            {u"provider=groq;chatModel=openai/gpt-oss-20b;groqChatDefaultMigratedTo120b=true"_s, u""_s},
            // language
            {u"provider=groq;language= EN "_s, u"language="_s},
            {u"provider=groq;language=en;languageDefaultMigratedToAuto=true"_s, u""_s},
            // keys in the wrong place
            {u"openai_api_key= gsk_1\n"_s, u"provider=groq;groq_api_key=gsk_1;openai_api_key"_s},
            {u"groq_api_key= sk-1 "_s, u"provider=groq;openai_api_key=sk-1;groq_api_key"_s},
            {u"groq_api_key= gsk_1 ;openai_api_key=gsk_1"_s, u"provider=groq;openai_api_key"_s},
            {u"groq_api_key=gsk_1;openai_api_key=gsk_2"_s, u"provider=groq"_s},
            {u"provider=groq;keychainKeysMigrated=true;openai_api_key=gsk_1"_s, u""_s},
        };
        for (const auto &[before, change] : cases) {
            Installation user(before);
            Installation expected(before);
            expected.change(marks + change);
            for (int launch = 0; launch < 3; ++launch) {
                user.launch();
                QCOMPARE(QStringList(before) + user.facts(), QStringList(before) + expected.facts());
            }
            for (const auto accessibility : std::as_const(user.secrets.accessibilities))
                QCOMPARE(accessibility, Keychain::Accessibility::afterFirstUnlock);
        }
    }

    void aFailingKeychainLosesNothing()
    {
        const std::initializer_list<std::tuple<int32_t FakeSecretStore::*, QString, QString>> cases{
            {&FakeSecretStore::findStatus, u"groq_api_key=sk-1"_s, u"groq_api_key;openai_api_key=sk-1"_s},
            {&FakeSecretStore::addStatus, u"openai_api_key=gsk_1"_s, u"groq_api_key=gsk_1;openai_api_key"_s},
            {&FakeSecretStore::removeStatus, u"groq_api_key=gsk_1;openai_api_key=gsk_1"_s, u"openai_api_key"_s},
            {&FakeSecretStore::removeStatus, u"openai_api_key=gsk_1"_s, u"groq_api_key=gsk_1;openai_api_key"_s},
        };
        for (const auto &[broken, keys, onceItWorks] : cases) {
            Installation user(u"chatModel=gpt-4o-mini;"_s + keys);
            Installation expected(u"provider=groq;"_s + keys);
            user.secrets.*broken = SecretStatus::authFailed;
            user.launch();
            expected.change(QString(marks).remove(u"keychainKeysMigrated=true;"_s));
            QCOMPARE(user.facts(), expected.facts());
            user.secrets.*broken = SecretStatus::success;
            user.launch(); // tries again
            expected.change(marks + onceItWorks);
            QCOMPARE(user.facts(), expected.facts());
        }
    }

    void nothingIsDecidedBeforeTheKeyringAnswers()
    {
        constexpr int32_t locked = SecretStatus::interactionNotAllowed;
        constexpr int32_t hangs = SecretStatus::success;
        const QString own = u"openai_api_key=sk-1"_s;
        const std::initializer_list<std::tuple<int32_t, QString, QString, QString>> cases{
            {locked, u""_s, u""_s, u"sayvane"_s},
            {locked, own, u""_s, u"openai"_s},
            {SecretStatus::ioError, own, u""_s, u"openai"_s},
            {hangs, u""_s, u""_s, u"sayvane"_s},
            {hangs, own, u""_s, u"openai"_s},
            {SecretStatus::notAvailable, u""_s, u"sayvane"_s, u"sayvane"_s},
        };
        for (const auto &[trouble, keys, before, after] : cases) {
            Installation user(keys);
            user.secrets.findStatus = trouble;
            user.secrets.setHangs(trouble == hangs);
            Keychain keychain(user.secrets);
            Prefs prefs(user.store, {});
            prefs.registerDefaults(keychain);
            QCOMPARE(user.provider(), before);
            QVERIFY(prefs.provider() == Provider::sayvane && prefs.transcriptionModel().isEmpty());
            QVERIFY(!prefs.keychainKeysMigrated());
            prefs.soundsEnabled.set(false); // by the user, meanwhile: no mark of an earlier version
            if (before.isEmpty()) {         // nor is it one at the next start
                Installation later(keys);
                later.store.values = user.store.values;
                later.launch();
                QVERIFY(later.provider() == after && !later.store.values.contains(u"firstStartUndecided"_s));
            }
            user.secrets.setHangs(false);
            user.secrets.setTrouble(SecretStatus::success);
            QCOMPARE(user.provider(), after);
            QCOMPARE(prefs.transcriptionModel(), Providers::defaultModel(prefs.provider(), ModelPurpose::transcription));
            QVERIFY(prefs.keychainKeysMigrated());
        }
    }
};

QTEST_APPLESS_MAIN(MigrationsTest)
#include "MigrationsTest.moc"
