#include "cloud/account/AccountFixture.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class AccountSignInTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<AccountFixture>(); }
    void cleanup() { m.reset(); }

    void signsInWithACode();
    void keepsTheNumbersOfACode();
    void aWrongCodeIsTypedAgain();
    void aRateLimitCountsDown();
    void whatComesAfterGoingBackIsDropped();
    void aKeyringThatRefusesIsTriedAgain();
    void listsAndEndsDevices();
    void signingOutCutsOffLateNews();

private:
    AccountSignIn &model() { return *m->signInModel; }
    FakeTransport &http() { return m->machine.http; }
    int waiting() { return http().waiting(); }
    void reachTheCode()
    {
        model().setEmail(u" A@B.test "_s);
        model().sendCode();
        http().answer(200, "{}");
    }
    void verify()
    {
        reachTheCode();
        model().enter(u"123456"_s);
        http().answer(200, R"({"token":"svs_9","user":{"email":"a@b.test"}})");
    }

    std::unique_ptr<AccountFixture> m;
};

void AccountSignInTest::signsInWithACode()
{
    model().setEmail(u"a b@c.test"_s);
    model().sendCode();
    QCOMPARE(model().errorText(), u"That does not look like an email address."_s);
    QVERIFY(http().requests.isEmpty());
    QSignalSpy changes(&model(), &AccountSignIn::changed);
    reachTheCode();
    QCOMPARE(m->sent(), uR"(POST /v1/auth/request-code - {"device":"Study","email":"a@b.test"})"_s);
    QVERIFY(model().isCodeStage() && !model().busy() && changes.size() >= 3);
    QCOMPARE(model().email() + model().sentTo() + model().error(), u"a@b.testa@b.test"_s);
    m->machine.clock.advance(29s);
    QVERIFY(!model().canResend() && model().countdown() == 1);
    m->machine.clock.jumpTo(m->machine.clock.now().addDays(-1)); // a clock that is set delays nothing
    m->machine.clock.advance(1s);
    QVERIFY(model().canResend() && m->machine.clock.pendingTimers() == 0);
    model().sendCode();
    model().sendCode(); // once is enough
    http().answer(200, "{}");
    QVERIFY(model().countdown() == 30 && waiting() == 0);

    model().enter(u"12 34-56"_s);
    QVERIFY(m->sent().startsWith(uR"(POST /v1/auth/verify - {"code":"123456","device":"Study")"_s));
    model().enter(u"999999"_s); // too late
    model().submit();
    http().answer(200, R"({"token":" svs_9 "})");
    QCOMPARE(m->machine.secrets.items.value(u"sayvane_session"_s), "svs_9");
    QVERIFY(m->account.signedIn() && !model().isCodeStage() && m->machine.clock.pendingTimers() == 0);
    QCOMPARE(model().code() + model().sentTo(), QString());
    // What the account is and which devices it has is asked at once.
    QVERIFY(model().loadingDevices());
    http().answer(200, R"({"plan":"pro","remainingSeconds":120})");
    http().answer(200, R"([{"id":"1","device":"Desk","current":true}])");
    QCOMPARE(m->account.remainingSeconds(), 120);
    const QVariant device = model().property("devices").toList().value(0);
    QCOMPARE(device.metaType().metaObject()->property(1).readOnGadget(device.constData()).toString(), u"Desk"_s);
    QVERIFY(!model().loadingDevices() && waiting() == 0);
}

void AccountSignInTest::keepsTheNumbersOfACode()
{
    const auto kept = [this](const QString &typed) {
        reachTheCode();
        model().enter(typed);
        const QString code = model().code() + (model().busy() ? u" sent"_s : u""_s);
        if (model().busy())
            http().answer(400, {});
        return code;
    };
    QCOMPARE(kept(u"123456789"_s), u"123456 sent"_s);
    QCOMPARE(kept(u"\tcode: 1 2\n3a4b5c6."_s), u"123456 sent"_s);
    QCOMPARE(kept(u"١٢٣ ٤٥٦"_s), u"١٢٣٤٥٦ sent"_s);
    QCOMPARE(kept(u"𝟏𝟐𝟑𝟒𝟓"_s), u"𝟏𝟐𝟑𝟒𝟓"_s); // two units each
    QCOMPARE(kept(u"𝟏𝟐𝟑𝟒𝟓𝟔𝟕"_s), u"𝟏𝟐𝟑𝟒𝟓𝟔 sent"_s);
}

void AccountSignInTest::aWrongCodeIsTypedAgain()
{
    reachTheCode();
    model().enter(u"123456"_s);
    http().answer(400, R"({"error":{"code":"invalid_code","message":"no"}})");
    QCOMPARE(model().error(), u"That code is not right. Check it and try again."_s);
    QVERIFY(model().isCodeStage() && model().code().isEmpty() && !model().busy() && model().countdown() == 30);
    model().enter(u"654321"_s);
    QVERIFY(model().error().isEmpty() && waiting() == 1);
}

void AccountSignInTest::aRateLimitCountsDown()
{
    const QString sentence = u"Too many requests just now."_s;
    const auto secondsAfter = [&](const QByteArray &body, const QByteArray &retryAfter) {
        model().reset();
        model().setEmail(u"a@b.test"_s);
        model().sendCode();
        http().answer(HttpResponse{429, {{"Retry-After", retryAfter}}, body});
        int seconds = 0;
        for (; model().rateLimited() && !model().canResend(); ++seconds) {
            if (model().errorText() != sentence + u" Try again in %1s."_s.arg(model().countdown()))
                return -1;
            m->machine.clock.advance(1s);
        }
        return model().isCodeStage() || model().countdown() ? -2 : seconds;
    };
    const QByteArray limited = R"({"error":{"code":"rate_limited","message":"Slow down."}})";
    QCOMPARE(secondsAfter(limited, "45"), 45);
    QCOMPARE(model().errorText(), sentence);
    QCOMPARE(secondsAfter(limited, {}), 30);
    QCOMPARE(secondsAfter({}, "2"), 2);
    QCOMPARE(secondsAfter({}, {}), 0); // no rate limit that it knows
    QCOMPARE(model().errorText(), sentence + u" Try again in a moment."_s);
}

void AccountSignInTest::whatComesAfterGoingBackIsDropped()
{
    reachTheCode();
    model().enter(u"123456"_s);
    model().reset();
    QVERIFY(!model().busy() && model().countdown() == 0 && model().email() == u"a@b.test");
    http().answer(200, R"({"token":"svs_9"})");
    QCOMPARE(m->sent(), u"POST /v1/auth/logout svs_9 {}"_s);
    http().answer(401, {}); // whatever it says
    QVERIFY(!m->account.signedIn() && m->machine.secrets.items.isEmpty() && !model().isCodeStage());
    for (const int status : {200, 500}) { // the same for a code, and for failures
        model().sendCode();
        model().reset();
        http().answer(status, "{}");
        QVERIFY(!model().isCodeStage() && model().error().isEmpty() && waiting() == 0);
    }
}

void AccountSignInTest::aKeyringThatRefusesIsTriedAgain()
{
    m->machine.secrets.addStatus = SecretStatus::interactionNotAllowed;
    verify();
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
    // Giving up ends the session on the service, and all begins anew.
    model().discardUnsavedSession();
    QCOMPARE(m->sent(), u"POST /v1/auth/logout svs_9 {}"_s);
    http().answer(204, {});
    verify();
    QVERIFY(isRefused());
    m->machine.secrets.addStatus = SecretStatus::success;
    model().retryStore();
    QVERIFY(m->account.signedIn() && !model().needsKeychainRetry() && !model().isCodeStage());
    QCOMPARE(m->sessions.token(), u"svs_9"_s);
    QCOMPARE(m->account.email(), u"a@b.test"_s);
    QVERIFY(model().error().isEmpty() && waiting() == 2);
    model().discardUnsavedSession(); // there is none any more
    QVERIFY(m->account.signedIn());
    // Whoever signs in once more ends the session from before.
    while (waiting() > 0)
        http().answer(500, {});
    m->sessions.save(u"svs_1"_s);
    verify();
    const HttpRequest end = http().requests.value(http().requests.size() - 3);
    QVERIFY(end.url.path() == u"/v1/auth/logout" &&
            end.headers.contains(std::pair<QByteArray, QByteArray>("Authorization", "Bearer svs_1")));
    QCOMPARE(m->sessions.token(), u"svs_9"_s);
    // The keyring has a question, and the user goes back instead of answering: that session is ended too.
    m->machine.secrets.setHangs(true);
    while (waiting() > 0)
        http().answer(500, {});
    reachTheCode();
    model().enter(u"123456"_s);
    http().answer(200, R"({"token":"svs_10"})");
    QVERIFY(model().busy());
    model().reset();
    m->machine.secrets.setHangs(false);
    QCOMPARE(m->sent(), u"POST /v1/auth/logout svs_10 {}"_s);
    QCOMPARE(m->sessions.token(), u"svs_9"_s); // the one from before stays
}

void AccountSignInTest::listsAndEndsDevices()
{
    model().loadDevices();
    QVERIFY(http().requests.isEmpty()); // nobody is signed in
    m->signIn(u"svs_1"_s);
    model().loadDevices();
    model().loadDevices(); // the newer list counts
    http().answer(200, R"([{"id":"1","current":true},{"id":"2"}])");
    const DeviceSession other = model().devices().value(1);
    model().signOut(other);
    QCOMPARE(m->sent(), uR"(POST /v1/auth/sessions/revoke svs_1 {"id":"2"})"_s);
    http().answer(500, R"({"error":{"message":"Not now."}})");
    QCOMPARE(model().devicesError(), u"Not now."_s);
    model().signOut(other);
    http().answer(204, {});
    QVERIFY(model().loadingDevices() && model().devicesError().isEmpty());
    http().answer(std::unexpected(TransportError{}));
    QVERIFY(model().devicesError().startsWith(u"Could not reach"_s) && model().devices().size() == 2);
    model().signOut(model().devices().first());
    QVERIFY(!m->account.signedIn() && model().devices().isEmpty() && m->machine.secrets.items.isEmpty());
    QCOMPARE(m->sent(), u"POST /v1/auth/logout svs_1 {}"_s);
    const auto requests = http().requests.size();
    model().signOut(other);
    model().refresh();
    QCOMPARE(http().requests.size(), requests);
    // Revoked elsewhere: nothing of the account stays.
    m->signIn(u"svs_2"_s);
    http().willAnswer(200, R"([{"id":"1"}])");
    model().loadDevices();
    http().willAnswer(401, {});
    model().loadDevices();
    QVERIFY(!m->account.signedIn() && model().devices().isEmpty() && !model().loadingDevices());
    QCOMPARE(model().devicesError(), u"Signed out. Sign in again in Settings."_s);
}

void AccountSignInTest::signingOutCutsOffLateNews()
{
    m->signIn(u"svs_1"_s);
    model().refresh();
    model().loadDevices();
    m->machine.secrets.removeStatus = SecretStatus::interactionNotAllowed;
    model().signOutThisMac(); // which the keyring does not allow: nothing changes
    QVERIFY(m->account.signedIn() && model().loadingDevices() && waiting() == 2);
    QCOMPARE(model().error(), u"Couldn't remove from Keychain: The keyring is locked."_s);
    m->machine.secrets.removeStatus = SecretStatus::success;
    m->machine.secrets.setHangs(true); // and its owner is asked first
    model().signOutThisMac();
    QVERIFY(m->account.signedIn() && model().error().isEmpty());
    http().willAnswer(204, {}); // the end of the session
    m->machine.secrets.setHangs(false);
    QVERIFY(!m->account.signedIn() && !model().loadingDevices() && waiting() == 0);
    // So does leaving in the middle of everything.
    m->signIn(u"svs_2"_s);
    reachTheCode();
    model().enter(u"123456"_s);
    model().refresh();
    model().loadDevices();
    QCOMPARE(waiting(), 3);
    m->signInModel.reset();
    QVERIFY(waiting() == 0 && m->machine.clock.pendingTimers() == 0);
}

QTEST_GUILESS_MAIN(AccountSignInTest)
#include "AccountSignInTest.moc"
