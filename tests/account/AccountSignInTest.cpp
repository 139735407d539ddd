#include "account/AccountFixture.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QByteArray session = R"({"token":"svs_9","user":{"email":"a@b.test"}})";

} // namespace

class AccountSignInTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<AccountFixture>(); }
    void cleanup() { m.reset(); }

    void signsInWithACode();
    void refusesAnAddressWithoutAsking();
    void keepsTheNumbersOfACode_data();
    void keepsTheNumbersOfACode();
    void aWrongCodeIsTypedAgain();
    void aRateLimitCountsDown_data();
    void aRateLimitCountsDown();
    void whatComesAfterGoingBackIsDropped();
    void aKeyringThatRefusesIsTriedAgain();
    void givingUpEndsTheSessionOnTheService();
    void listsAndEndsDevices();
    void signingOutCutsOffLateNews();
    void aSessionRevokedElsewhereLeavesNothing();
    void leavingInTheMiddle();

private:
    AccountSignIn &model() { return m->signInModel; }
    FakeTransport &http() { return m->machine.http; }
    int waiting() { return http().waiting(); }
    void reachTheCode()
    {
        model().setEmail(u" A@B.test "_s);
        model().sendCode();
        http().answer(200, "{}");
    }

    std::unique_ptr<AccountFixture> m;
};

void AccountSignInTest::signsInWithACode()
{
    QSignalSpy changes(&model(), &AccountSignIn::changed);
    model().setEmail(u" A@B.test "_s);
    model().sendCode();
    QVERIFY(model().busy() && !model().canResend());
    model().sendCode(); // once is enough
    QCOMPARE(m->sent(), uR"(POST /v1/auth/request-code - {"device":"Study","email":"a@b.test"})"_s);
    http().answer(200, "{}");
    QCOMPARE(waiting(), 0);
    QVERIFY(model().isCodeStage() && !model().busy() && changes.size() >= 3);
    QCOMPARE(model().email() + model().sentTo(), u"a@b.testa@b.test"_s);
    QCOMPARE(model().countdown(), 30);
    m->machine.clock.advance(29s);
    QVERIFY(!model().canResend());
    m->machine.clock.jumpTo(m->machine.clock.now().addDays(-1)); // a clock that is set delays nothing
    m->machine.clock.advance(1s);
    QVERIFY(model().canResend());
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
    model().sendCode();
    http().answer(200, "{}");
    QCOMPARE(model().countdown(), 30);

    model().enter(u"12 34-56"_s);
    QCOMPARE(model().code(), u"123456"_s);
    QVERIFY(m->sent().startsWith(uR"(POST /v1/auth/verify - {"code":"123456","device":"Study")"_s));
    model().enter(u"999999"_s); // too late
    model().submit();
    http().answer(200, session);
    QCOMPARE(m->machine.secrets.items.value(u"sayvane_session"_s), "svs_9");
    QVERIFY(m->account.signedIn() && !model().isCodeStage());
    QCOMPARE(model().code() + model().sentTo(), QString());
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
    // What the account is and which devices it has is asked at once.
    QVERIFY(model().loadingDevices());
    http().answer(200, R"({"plan":"pro","remainingSeconds":120})");
    http().answer(200, R"([{"id":"1","device":"Desk","current":true}])");
    QCOMPARE(m->account.property("remainingText").toString(), u"2 minutes"_s);
    QVERIFY(!model().loadingDevices());
    const QVariant device = model().property("devices").toList().value(0);
    QCOMPARE(device.metaType().metaObject()->property(1).readOnGadget(device.constData()).toString(), u"Desk"_s);
    QCOMPARE(waiting(), 0);
}

void AccountSignInTest::refusesAnAddressWithoutAsking()
{
    model().setEmail(u"a b@c.test"_s);
    model().sendCode();
    QCOMPARE(model().errorText(), u"That does not look like an email address."_s);
    QVERIFY(http().requests.isEmpty() && !model().busy());
}

void AccountSignInTest::keepsTheNumbersOfACode_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");
    QTest::addColumn<bool>("isSent");
    QTest::newRow("five") << u"12345"_s << u"12345"_s << false;
    QTest::newRow("nine") << u"123456789"_s << u"123456"_s << true;
    QTest::newRow("blanks and letters") << u"\tcode: 1 2\n3a4b5c6."_s << u"123456"_s << true;
    QTest::newRow("Arabic") << u"١٢٣ ٤٥٦"_s << u"١٢٣٤٥٦"_s << true;
    QTest::newRow("beyond 16 bits, five") << u"𝟏𝟐𝟑𝟒𝟓"_s << u"𝟏𝟐𝟑𝟒𝟓"_s << false;
    QTest::newRow("beyond 16 bits, seven") << u"𝟏𝟐𝟑𝟒𝟓𝟔𝟕"_s << u"𝟏𝟐𝟑𝟒𝟓𝟔"_s << true;
    QTest::newRow("words") << u"six"_s << u""_s << false;
}

void AccountSignInTest::keepsTheNumbersOfACode()
{
    QFETCH(QString, typed);
    reachTheCode();
    model().enter(typed);
    QTEST(model().code(), "kept");
    QTEST(waiting() == 1, "isSent");
}

void AccountSignInTest::aWrongCodeIsTypedAgain()
{
    reachTheCode();
    model().enter(u"123456"_s);
    http().answer(400, R"({"error":{"code":"invalid_code","message":"no"}})");
    QCOMPARE(model().error(), u"That code is not right. Check it and try again."_s);
    QVERIFY(model().isCodeStage() && model().code().isEmpty() && !model().busy());
    QCOMPARE(model().countdown(), 30); // the resend goes on waiting
    model().enter(u"654321"_s);
    QCOMPARE(model().error(), QString());
    QCOMPARE(waiting(), 1);
}

void AccountSignInTest::aRateLimitCountsDown_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("retryAfter");
    QTest::addColumn<int>("seconds"); // 0: not a rate limit
    const QByteArray limited = R"({"error":{"code":"rate_limited","message":"Slow down."}})";
    QTest::newRow("with header") << limited << QByteArray("45") << 45;
    QTest::newRow("without") << limited << QByteArray() << 30;
    QTest::newRow("no code") << QByteArray() << QByteArray("2") << 2;
    QTest::newRow("neither") << QByteArray() << QByteArray() << 0;
}

void AccountSignInTest::aRateLimitCountsDown()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, retryAfter);
    QFETCH(int, seconds);
    model().setEmail(u"a@b.test"_s);
    model().sendCode();
    http().answer(HttpResponse{429, {{"Retry-After", retryAfter}}, body});
    const QString sentence = u"Too many requests just now."_s;
    QCOMPARE(model().rateLimited(), seconds > 0);
    QCOMPARE(model().isCodeStage(), false);
    if (seconds == 0) {
        QCOMPARE(model().errorText(), sentence + u" Try again in a moment."_s);
        return;
    }
    for (; seconds > 0; --seconds) {
        QCOMPARE(model().errorText(), sentence + u" Try again in %1s."_s.arg(seconds));
        QVERIFY(!model().canResend());
        m->machine.clock.advance(1s);
    }
    QCOMPARE(model().errorText(), sentence);
    QVERIFY(model().canResend() && !model().rateLimited());
}

void AccountSignInTest::whatComesAfterGoingBackIsDropped()
{
    reachTheCode();
    model().enter(u"123456"_s);
    model().reset();
    QVERIFY(!model().busy() && model().countdown() == 0);
    QCOMPARE(model().email(), u"a@b.test"_s); // what was typed stays
    http().answer(200, session);
    QCOMPARE(m->sent(), u"POST /v1/auth/logout svs_9 {}"_s);
    http().answer(401, {}); // whatever it says
    QVERIFY(!m->account.signedIn() && m->machine.secrets.items.isEmpty() && !model().isCodeStage());
    // The same for a code, and for failures.
    model().sendCode();
    model().reset();
    http().answer(200, "{}");
    QVERIFY(!model().isCodeStage());
    model().sendCode();
    model().reset();
    http().answer(500, {});
    QCOMPARE(model().error(), QString());
    QCOMPARE(waiting(), 0);
}

void AccountSignInTest::aKeyringThatRefusesIsTriedAgain()
{
    m->machine.secrets.addStatus = SecretStatus::interactionNotAllowed;
    reachTheCode();
    model().enter(u"123456"_s);
    http().answer(200, session);
    const auto isRefused = [this] {
        return model().needsKeychainRetry() && !m->account.signedIn() && waiting() == 0 &&
               model().errorText() == u"Couldn't save the session to the Keychain: The keyring is locked."_s;
    };
    QVERIFY(isRefused());
    model().sendCode();
    model().enter(u"111111"_s);
    model().submit();
    model().retryStore();
    QVERIFY(isRefused());
    m->machine.secrets.addStatus = SecretStatus::success;
    model().retryStore();
    QVERIFY(m->account.signedIn() && !model().needsKeychainRetry() && !model().isCodeStage());
    QCOMPARE(m->sessions.token(), u"svs_9"_s);
    QCOMPARE(m->account.email(), u"a@b.test"_s);
    QCOMPARE(model().error(), QString());
    QCOMPARE(waiting(), 2);
    model().discardUnsavedSession(); // there is none any more
    QVERIFY(m->account.signedIn());
}

void AccountSignInTest::givingUpEndsTheSessionOnTheService()
{
    m->machine.secrets.addStatus = -12345;
    reachTheCode();
    model().enter(u"123456"_s);
    http().answer(200, session);
    QVERIFY(model().error().endsWith(u": Keychain error -12345"_s));
    model().discardUnsavedSession();
    QCOMPARE(m->sent(), u"POST /v1/auth/logout svs_9 {}"_s);
    QVERIFY(!model().needsKeychainRetry() && !model().unsavedSession() && !model().isCodeStage());
    model().sendCode(); // from the beginning
    QCOMPARE(waiting(), 2);
}

void AccountSignInTest::listsAndEndsDevices()
{
    model().loadDevices();
    QVERIFY(http().requests.isEmpty()); // nobody is signed in
    m->signIn(u"svs_1"_s);
    model().loadDevices();
    model().loadDevices(); // the newer list counts
    http().answer(200, R"([{"id":"1","current":true},{"id":"2"}])");
    QCOMPARE(model().devices().size(), 2);
    const DeviceSession other = model().devices().last();
    model().signOut(other);
    QCOMPARE(m->sent(), uR"(POST /v1/auth/sessions/revoke svs_1 {"id":"2"})"_s);
    http().answer(500, R"({"error":{"message":"Not now."}})");
    QCOMPARE(model().devicesError(), u"Not now."_s);
    QCOMPARE(model().devices().size(), 2);
    model().signOut(other);
    QCOMPARE(model().devicesError(), QString());
    http().answer(204, {});
    QVERIFY(model().loadingDevices());
    http().answer(std::unexpected(TransportError{}));
    QVERIFY(model().devicesError().startsWith(u"Could not reach"_s) && model().devices().size() == 2);
    model().signOut(model().devices().first());
    QVERIFY(!m->account.signedIn() && model().devices().isEmpty() && m->machine.secrets.items.isEmpty());
    QCOMPARE(m->sent(), u"POST /v1/auth/logout svs_1 {}"_s);
    const auto requests = http().requests.size();
    model().signOut(other);
    model().refresh();
    model().signOutThisMac();
    QCOMPARE(http().requests.size(), requests);
}

void AccountSignInTest::signingOutCutsOffLateNews()
{
    m->signIn(u"svs_1"_s);
    model().refresh();
    model().loadDevices();
    http().willAnswer(204, {}); // the end of the session
    model().signOutThisMac();
    QVERIFY(!model().loadingDevices());
    m->signIn(u"svs_2"_s);
    QCOMPARE(waiting(), 0);
    QCOMPARE(m->account.email(), u"a@b.test"_s);
    QVERIFY(model().devices().isEmpty() && model().devicesError().isEmpty());
    m->machine.secrets.removeStatus = SecretStatus::interactionNotAllowed;
    model().signOutThisMac();
    QVERIFY(!m->account.signedIn());
    QCOMPARE(model().error(), u"Couldn't remove from Keychain: The keyring is locked."_s);
}

void AccountSignInTest::aSessionRevokedElsewhereLeavesNothing()
{
    m->signIn(u"svs_1"_s);
    http().willAnswer(200, R"([{"id":"1"}])");
    model().loadDevices();
    http().willAnswer(401, {});
    model().loadDevices();
    QVERIFY(!m->account.signedIn() && model().devices().isEmpty() && !model().loadingDevices());
    QCOMPARE(model().devicesError(), u"Signed out. Sign in again in Settings."_s);
}

void AccountSignInTest::leavingInTheMiddle()
{
    m->signIn(u"svs_1"_s);
    auto model = std::make_unique<AccountSignIn>(AccountSignIn::Collaborators{
        m->client, m->sessions, m->account, m->keychain, m->machine.computerName, m->machine.clock});
    model->setEmail(u"a@b.test"_s);
    model->sendCode();
    http().answer(200, "{}");
    model->enter(u"123456"_s);
    model->refresh();
    model->loadDevices();
    QCOMPARE(waiting(), 3);
    model.reset();
    QCOMPARE(waiting(), 0);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
}

QTEST_GUILESS_MAIN(AccountSignInTest)
#include "AccountSignInTest.moc"
