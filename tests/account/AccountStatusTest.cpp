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

    void tellsTimeLeftInWords_data();
    void tellsTimeLeftInWords();
    void describesTheAccount_data();
    void describesTheAccount();
    void readsTheSession_data();
    void readsTheSession();
    void theSessionStaysOnThisComputer();
    void adoptingLeavesNothingOfAnotherAccount();
    void takesNewsOfTheAccount_data();
    void takesNewsOfTheAccount();
    void aRejectedSessionIsDroppedOnce();
    void findsTheCredential_data();
    void findsTheCredential();

private:
    std::unique_ptr<Fixture> m;
};

void AccountStatusTest::tellsTimeLeftInWords_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("words");
    QTest::newRow("-5") << qint64(-5) << u"0 minutes"_s;
    QTest::newRow("1") << qint64(1) << u"under a minute"_s;
    QTest::newRow("59") << qint64(59) << u"under a minute"_s;
    QTest::newRow("60") << qint64(60) << u"1 minute"_s;
    QTest::newRow("119") << qint64(119) << u"1 minute"_s;
    QTest::newRow("120") << qint64(120) << u"2 minutes"_s;
    QTest::newRow("7199") << qint64(7199) << u"119 minutes"_s;
}

void AccountStatusTest::tellsTimeLeftInWords()
{
    QFETCH(qint64, seconds);
    QTEST(AccountStatus::minutesText(seconds), "words");
}

void AccountStatusTest::describesTheAccount_data()
{
    QTest::addColumn<AccountInfo>("info");
    QTest::addColumn<QString>("line");
    QTest::newRow("all") << AccountInfo{.plan = u"pro"_s,
                                        .status = u"active"_s,
                                        .dailyMinutes = 30,
                                        .remainingSeconds = 45}
                         << u"Pro plan, active. 30 minutes a day. under a minute left today."_s;
    QTest::newRow("plan alone") << AccountInfo{.plan = u"éco Plus"_s} << u"Éco Plus plan."_s;
    QTest::newRow("minutes alone") << AccountInfo{.dailyMinutes = 0} << u"0 minutes a day."_s;
    QTest::newRow("overdrawn") << AccountInfo{.plan = u""_s, .remainingSeconds = -9}
                               << u"0 minutes left today."_s;
    QTest::newRow("status without plan") << AccountInfo{.status = u"paused"_s} << u"Account paused."_s;
    QTest::newRow("nothing") << AccountInfo{.plan = u""_s, .status = u""_s} << u"Signed in."_s;
}

void AccountStatusTest::describesTheAccount()
{
    QFETCH(AccountInfo, info);
    QTEST(info.summary(), "line");
}

void AccountStatusTest::readsTheSession_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<std::optional<QString>>("token");
    QTest::newRow("plain") << QByteArray("svs_1") << std::optional(u"svs_1"_s);
    QTest::newRow("blanks and a new line") << QByteArray(" svs_1 \n") << std::optional(u"svs_1"_s);
    QTest::newRow("only blanks") << QByteArray(" \n") << std::optional<QString>();
    QTest::newRow("not UTF-8") << QByteArray("svs_\xFF") << std::optional<QString>();
}

void AccountStatusTest::readsTheSession()
{
    QFETCH(QByteArray, bytes);
    m->secrets.items.insert(u"sayvane_session"_s, bytes);
    m->store.values.insert(u"accountEmail"_s, u" a@b.test "_s);
    QTEST(m->sessions.token(), "token");
    QCOMPARE(m->status().email(), u"a@b.test"_s);
    QCOMPARE(m->status().signedIn(), m->sessions.token().has_value());
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
    const AccountInfo expected{
        .email = u"a@b.test"_s, .plan = u"pro"_s, .status = u"active"_s, .dailyMinutes = 30};
    QVERIFY(m->status().info() == expected);
    QCOMPARE(changes.size(), 1);
}

void AccountStatusTest::takesNewsOfTheAccount_data()
{
    QTest::addColumn<bool>("signedIn");
    QTest::addColumn<AccountInfo>("news");
    QTest::addColumn<QString>("email");
    QTest::addColumn<std::optional<qint64>>("remaining");
    QTest::newRow("a new address") << true << AccountInfo{.email = u"new@b.test"_s} << u"new@b.test"_s
                                   << std::optional<qint64>(60);
    QTest::newRow("a new address while signed out")
        << false << AccountInfo{.email = u"new@b.test"_s} << u""_s << std::optional<qint64>();
    QTest::newRow("an empty address")
        << true << AccountInfo{.email = u""_s} << u"a@b.test"_s << std::optional<qint64>(60);
    QTest::newRow("time left") << true << AccountInfo{.remainingSeconds = 5} << u"a@b.test"_s
                               << std::optional<qint64>(5);
    QTest::newRow("overdrawn") << true << AccountInfo{.remainingSeconds = -30} << u"a@b.test"_s
                               << std::optional<qint64>(0);
}

void AccountStatusTest::takesNewsOfTheAccount()
{
    QFETCH(bool, signedIn);
    QFETCH(AccountInfo, news);
    if (signedIn) {
        m->status().adopt(session);
        m->status().setRemainingSeconds(60);
    }
    m->status().setInfo(news);
    QVERIFY(m->status().info() == news);
    QTEST(m->status().email().value_or(QString()), "email");
    QTEST(m->prefs.accountEmail(), "email");
    QTEST(m->status().remainingSeconds(), "remaining");
}

void AccountStatusTest::aRejectedSessionIsDroppedOnce()
{
    m->sessions.save(session.token);
    m->status().adopt(session);
    QSignalSpy rejections(&m->status(), &AccountStatus::sessionRejected);
    m->status().setRemainingSeconds(-30);
    QCOMPARE(m->status().remainingSeconds(), 0);
    QVERIFY(m->status().dropRejectedSession(m->sessions));
    QVERIFY(!m->status().signedIn());
    QVERIFY(!m->status().email() && !m->status().info() && !m->status().remainingSeconds());
    QVERIFY(m->secrets.items.isEmpty() && m->store.values.isEmpty());
    QVERIFY(!m->status().dropRejectedSession(m->sessions));
    QCOMPARE(rejections.size(), 1);
}

void AccountStatusTest::findsTheCredential_data()
{
    QTest::addColumn<Provider>("provider");
    QTest::addColumn<QString>("account");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isLocked");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("hasCredential");
    QTest::addColumn<QString>("error");
    const QString noGroq = u"No Groq API key. Open Settings to add one."_s;
    const QString noOpenAI = u"No OpenAI API key. Open Settings to add one."_s;
    const QString noSession = u"Sign in under Settings to start dictating"_s;
    const auto row = [](const char *name, Provider provider, const QString &account, const QByteArray &bytes,
                        bool isLocked, const QString &key, bool hasCredential, const QString &error) {
        QTest::newRow(name) << provider << account << bytes << isLocked << key << hasCredential << error;
    };
    row("groq", Provider::groq, u"groq_api_key"_s, " gsk_1\n", false, u"gsk_1"_s, true, {});
    row("groq, none", Provider::groq, u"openai_api_key"_s, "sk-1", false, {}, false, noGroq);
    row("groq, blank", Provider::groq, u"groq_api_key"_s, " \n", false, {}, true, noGroq);
    row("openai", Provider::openai, u"openai_api_key"_s, "sk-1", false, u"sk-1"_s, true, {});
    row("openai, locked", Provider::openai, u"openai_api_key"_s, "sk-1", true, {}, false, noOpenAI);
    row("service", Provider::sayvane, u"sayvane_session"_s, "svs_1\n", false, u"svs_1"_s, true, {});
    row("service, blank", Provider::sayvane, u"sayvane_session"_s, " ", false, {}, false, noSession);
    row("service, none", Provider::sayvane, u"groq_api_key"_s, "gsk_1", false, {}, false, noSession);
}

void AccountStatusTest::findsTheCredential()
{
    QFETCH(Provider, provider);
    QFETCH(QString, account);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isLocked);
    m->secrets.items.insert(account, bytes);
    if (isLocked)
        m->secrets.findStatus = SecretStatus::interactionNotAllowed;
    const auto key = m->credentials.apiKey(provider);
    QTEST(key.value_or(QString()), "key");
    QTEST(key ? QString() : key.error().description, "error");
    QTEST(m->credentials.hasCredential(provider), "hasCredential");
}

QTEST_APPLESS_MAIN(AccountStatusTest)
#include "AccountStatusTest.moc"
