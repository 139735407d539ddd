#include "cloud/account/AccountFixture.h"
#include "cloud/account/Credentials.h"

#include <QCoroTask>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const AccountSession session{
    .token = u"svs_1"_s, .email = u"a@b.test"_s, .plan = u"pro"_s, .dailyMinutes = 30, .expiresAt = {}};

} // namespace

class AccountStatusTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<AccountFixture>(); }
    void cleanup() { m.reset(); }

    void tellsTimeLeftInWords();
    void describesTheAccount();
    void aBlankSessionIsNone();
    void theSessionStaysOnThisComputer();
    void adoptingLeavesNothingOfAnotherAccount();
    void takesNewsOfTheAccount();
    void findsTheCredential();

private:
    std::unique_ptr<AccountFixture> m;
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
    m->machine.secrets.items.insert(u"sayvane_session"_s, " \n");
    m->machine.defaults.values.insert(u"accountEmail"_s, u" a@b.test "_s);
    QCOMPARE(m->sessions.token(), std::nullopt);
    const AccountStatus status(m->sessions, m->prefs);
    QCOMPARE(status.email(), u"a@b.test"_s);
    QVERIFY(!status.signedIn());
}

void AccountStatusTest::theSessionStaysOnThisComputer()
{
    QCOMPARE(m->sessions.token(), std::nullopt);
    QCOMPARE(QCoro::waitFor(m->sessions.save(u" svs_1\n"_s)), SecretStatus::success);
    QCOMPARE(m->machine.secrets.items.value(u"sayvane_session"_s), "svs_1");
    QCOMPARE(m->machine.secrets.accessibilities.value(u"sayvane_session"_s),
             SecretStore::Accessibility::afterFirstUnlockThisDeviceOnly);
    QCOMPARE(QCoro::waitFor(m->sessions.clear()), SecretStatus::success);
    QVERIFY(m->machine.secrets.items.isEmpty());
}

void AccountStatusTest::adoptingLeavesNothingOfAnotherAccount()
{
    m->account.adopt({.token = u"svs_0"_s, .email = u"old@b.test"_s, .expiresAt = {}});
    m->account.setInfo({.usedTodaySeconds = 5, .remainingSeconds = 60});
    QSignalSpy changes(&m->account, &AccountStatus::changed);
    m->account.adopt(session);
    QVERIFY(m->account.signedIn());
    QCOMPARE(m->account.email(), u"a@b.test"_s);
    QCOMPARE(m->prefs.accountEmail(), u"a@b.test"_s);
    QCOMPARE(m->account.remainingSeconds(), std::nullopt);
    const AccountInfo expected{.email = u"a@b.test"_s, .plan = u"pro"_s, .status = u"active"_s, .dailyMinutes = 30};
    QVERIFY(m->account.info() == expected);
    QCOMPARE(changes.size(), 1);
}

void AccountStatusTest::takesNewsOfTheAccount()
{
    m->account.setInfo({.email = u"new@b.test"_s});
    QCOMPARE(m->account.email(), std::nullopt); // nobody is signed in
    m->account.adopt(session);
    m->account.setRemainingSeconds(60);
    m->account.setInfo({.email = u"new@b.test"_s});
    QCOMPARE(m->prefs.accountEmail(), u"new@b.test"_s);
    QCOMPARE(m->account.remainingSeconds(), 60);
    m->account.setInfo({.email = u""_s, .remainingSeconds = -30});
    QCOMPARE(m->account.email(), u"new@b.test"_s);
    QCOMPARE(m->account.remainingSeconds(), 0);
}

void AccountStatusTest::findsTheCredential()
{
    const Credentials credentials(m->keychain, m->sessions);
    const auto error = [&](Provider provider) {
        const auto key = QCoro::waitFor(credentials.apiKey(provider, {}));
        return key ? QString() : key.error().description;
    };
    m->machine.secrets.items = {{u"groq_api_key"_s, " gsk_1\n"}, {u"sayvane_session"_s, " "}};
    QCOMPARE(error(Provider::groq), QString());
    QCOMPARE(error(Provider::openai), u"No OpenAI API key. Open Settings to add one."_s);
    QCOMPARE(error(Provider::sayvane), u"Sign in under Settings to start dictating"_s);
    QVERIFY(credentials.hasCredential(Provider::groq) && !credentials.hasCredential(Provider::sayvane));
    m->machine.secrets.items.insert(u"groq_api_key"_s, " \n");
    QCOMPARE(error(Provider::groq), u"No Groq API key. Open Settings to add one."_s);
    QVERIFY(credentials.hasCredential(Provider::groq));
}

QTEST_APPLESS_MAIN(AccountStatusTest)
#include "AccountStatusTest.moc"
