#include "account/AccountStatus.h"

#include "account/AccountSession.h"
#include "account/AccountSessionStore.h"
#include "account/Credentials.h"
#include "settings/Defaults.h"
#include "settings/Keychain.h"
#include "settings/Prefs.h"
#include "support/FakeMachine.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// A computer on which the account's objects are made when they are first needed.
struct Fixture
{
    FakeDefaultsStore store;
    FakeSecretStore secrets;
    Keychain keychain{secrets};
    Defaults defaults{store};
    Prefs prefs{defaults, u"https://service.test"_s};
    AccountSessionStore sessions{keychain};
    Credentials credentials{keychain, sessions};

    AccountStatus &status()
    {
        if (!m_status)
            m_status = std::make_unique<AccountStatus>(sessions, prefs);
        return *m_status;
    }

private:
    std::unique_ptr<AccountStatus> m_status;
};

const AccountSession session{
    .token = u"svs_1"_s, .email = u"a@b.test"_s, .plan = u"pro"_s, .dailyMinutes = 30, .expiresAt = {}};

} // namespace

class AccountStatusTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void tellsTimeLeftInWords();
    void describesTheAccount();
    void aBlankSessionIsNone();
    void theSessionStaysOnThisComputer();
    void adoptingLeavesNothingOfAnotherAccount();
    void takesNewsOfTheAccount();
    void findsTheCredential();

private:
    std::unique_ptr<Fixture> m;
};

void AccountStatusTest::tellsTimeLeftInWords()
{
    QCOMPARE(AccountStatus::minutesText(-5), u"0 minutes"_s);
    QCOMPARE(AccountStatus::minutesText(1), u"under a minute"_s);
    QCOMPARE(AccountStatus::minutesText(59), u"under a minute"_s);
    QCOMPARE(AccountStatus::minutesText(60), u"1 minute"_s);
    QCOMPARE(AccountStatus::minutesText(119), u"1 minute"_s);
    QCOMPARE(AccountStatus::minutesText(120), u"2 minutes"_s);
}

void AccountStatusTest::describesTheAccount()
{
    const AccountInfo all{.plan = u"éco Plus"_s, .status = u"active"_s, .dailyMinutes = 30, .remainingSeconds = 45};
    QCOMPARE(all.summary(), u"Éco Plus plan, active. 30 minutes a day. under a minute left today."_s);
    QCOMPARE(AccountInfo{.status = u"paused"_s}.summary(), u"Account paused."_s);
    const AccountInfo nothing{.plan = u""_s, .status = u""_s};
    QCOMPARE(nothing.summary(), u"Signed in."_s);
}

void AccountStatusTest::aBlankSessionIsNone()
{
    m->secrets.items.insert(u"sayvane_session"_s, " \n");
    m->store.values.insert(u"accountEmail"_s, u" a@b.test "_s);
    QCOMPARE(m->sessions.token(), std::nullopt);
    QCOMPARE(m->status().email(), u"a@b.test"_s);
    QVERIFY(!m->status().signedIn());
}

void AccountStatusTest::theSessionStaysOnThisComputer()
{
    QCOMPARE(m->sessions.token(), std::nullopt);
    QCOMPARE(m->sessions.save(u" svs_1\n"_s), SecretStatus::success);
    QCOMPARE(m->secrets.items.value(u"sayvane_session"_s), "svs_1");
    QCOMPARE(m->secrets.accessibilities.value(u"sayvane_session"_s),
             SecretStore::Accessibility::afterFirstUnlockThisDeviceOnly);
    QCOMPARE(m->sessions.clear(), SecretStatus::success);
    QVERIFY(m->secrets.items.isEmpty());
}

void AccountStatusTest::adoptingLeavesNothingOfAnotherAccount()
{
    m->status().adopt({.token = u"svs_0"_s, .email = u"old@b.test"_s, .expiresAt = {}});
    m->status().setInfo({.usedTodaySeconds = 5, .remainingSeconds = 60});
    QSignalSpy changes(&m->status(), &AccountStatus::changed);
    m->status().adopt(session);
    QVERIFY(m->status().signedIn());
    QCOMPARE(m->status().email(), u"a@b.test"_s);
    QCOMPARE(m->prefs.accountEmail(), u"a@b.test"_s);
    QCOMPARE(m->status().remainingSeconds(), std::nullopt);
    const AccountInfo expected{.email = u"a@b.test"_s, .plan = u"pro"_s, .status = u"active"_s, .dailyMinutes = 30};
    QVERIFY(m->status().info() == expected);
    QCOMPARE(changes.size(), 1);
}

void AccountStatusTest::takesNewsOfTheAccount()
{
    m->status().setInfo({.email = u"new@b.test"_s});
    QCOMPARE(m->status().email(), std::nullopt); // nobody is signed in
    m->status().adopt(session);
    m->status().setRemainingSeconds(60);
    m->status().setInfo({.email = u"new@b.test"_s});
    QCOMPARE(m->prefs.accountEmail(), u"new@b.test"_s);
    QCOMPARE(m->status().remainingSeconds(), 60);
    m->status().setInfo({.email = u""_s, .remainingSeconds = -30});
    QCOMPARE(m->status().email(), u"new@b.test"_s);
    QCOMPARE(m->status().remainingSeconds(), 0);
}

void AccountStatusTest::findsTheCredential()
{
    const auto error = [this](Provider provider) {
        const auto key = m->credentials.apiKey(provider);
        return key ? QString() : key.error().description;
    };
    m->secrets.items = {{u"groq_api_key"_s, " gsk_1\n"}, {u"sayvane_session"_s, " "}};
    QCOMPARE(m->credentials.apiKey(Provider::groq).value_or(QString()), u"gsk_1"_s);
    QCOMPARE(error(Provider::openai), u"No OpenAI API key. Open Settings to add one."_s);
    QCOMPARE(error(Provider::sayvane), u"Sign in under Settings to start dictating"_s);
    QVERIFY(m->credentials.hasCredential(Provider::groq) && !m->credentials.hasCredential(Provider::sayvane));
    m->secrets.items.insert(u"groq_api_key"_s, " \n");
    QCOMPARE(error(Provider::groq), u"No Groq API key. Open Settings to add one."_s);
    QVERIFY(m->credentials.hasCredential(Provider::groq));
    m->secrets.findStatus = SecretStatus::interactionNotAllowed;
    QVERIFY(!m->credentials.hasCredential(Provider::groq));
}

QTEST_APPLESS_MAIN(AccountStatusTest)
#include "AccountStatusTest.moc"
