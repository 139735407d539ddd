#include "program/FlowFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Act = QString (*)(FlowFixture &);

QString toldOf(const std::optional<QString> &error)
{
    return error.value_or(u"nothing"_s);
}

QString wait(FlowFixture &m)
{
    m.machine.clock.advance(10min); // for whatever runs by the clock
    return {};
}

QString dictate(FlowFixture &m)
{
    m.speak();
    if (m.machine.http.waiting() > 0) {
        m.answerText(u"one two three"_s);
        m.finishPaste();
        return m.machine.keyPoster.clipboardWhenPosted.join(u'|');
    }
    return toldOf(m.flow().lastError());
}

QString signOut(FlowFixture &m)
{
    m.host().signIn().signOutThisMac();
    return m.host().signIn().errorText();
}

QString signIn(FlowFixture &m)
{
    AccountSignIn &model = m.host().signIn();
    model.setEmail(u"a@b.test"_s);
    model.sendCode();
    m.machine.http.answer(200, "{}");
    model.enter(u"123456"_s);
    m.machine.http.answer(200, R"({"token":"svs_new"})");
    return model.errorText();
}

QString listDevices(FlowFixture &m)
{
    m.host().signIn().loadDevices();
    return QString::number(m.machine.http.waiting());
}

} // namespace

/// What people do while the keyring is closed, slow or missing: nothing waits for it, nothing is decided
/// without it, and all is as before once it is open.
class ClosedKeyringTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void losesNothing_data();
    void losesNothing();
    void aHangingKeyringHoldsNobodyUp();
    void leavingWhileTheKeyringHangsKeepsTheRecording();
    void aKeyringThatComesLaterCounts();
};

void ClosedKeyringTest::losesNothing_data()
{
    QTest::addColumn<bool>("sinceStart"); // else it closes after it was read
    QTest::addColumn<Act>("act");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<bool>("asks"); // its owner to open it
    const QString locked = u"The keyring is locked."_s;
    const auto row = [](const char *name, bool sinceStart, Act act, const QString &outcome, bool asks) {
        QTest::newRow(name) << sinceStart << act << outcome << asks;
    };
    row("start", true, &wait, {}, false);
    row("time passes", false, &wait, {}, false);
    row("first dictation", true, &dictate, u"Sign in under Settings to start dictating"_s, true);
    row("dictation", false, &dictate, u"one two three"_s, false);
    row("sign out unknown", true, &signOut, u"Couldn't remove from Keychain: "_s + locked, true);
    row("sign out", false, &signOut, u"Couldn't remove from Keychain: "_s + locked, false);
    row("sign in", true, &signIn, u"Couldn't save the session to the Keychain: "_s + locked, false);
    row("devices unknown", true, &listDevices, u"0"_s, false);
    row("devices", false, &listDevices, u"1"_s, false);
}

void ClosedKeyringTest::losesNothing()
{
    QFETCH(bool, sinceStart);
    QFETCH(Act, act);
    FlowFixture m;
    m.machine.defaults.values.insert(u"accountEmail"_s, u"a@b.test"_s);
    if (!sinceStart)
        m.host();
    m.machine.secrets.setTrouble(SecretStatus::interactionNotAllowed);
    QCOMPARE(m.host().account().signedIn(), !sinceStart);
    QTEST(act(m), "outcome");
    QTEST(m.machine.secrets.asked > 0, "asks");
    QCOMPARE(m.flow().state(), FlowState::idle);
    m.machine.clock.advance(10s);
    QCOMPARE(m.dashboardsShown, 0);
    m.machine.secrets.setTrouble(SecretStatus::success);
    m.host().signIn().retryStore();
    QVERIFY(m.host().account().signedIn() && m.host().sessions().token());
    QCOMPARE(m.host().account().email(), u"a@b.test"_s);
    m.machine.clock.advance(10s);
    QCOMPARE(m.dashboardsShown, 0);
}

void ClosedKeyringTest::aHangingKeyringHoldsNobodyUp()
{
    FlowFixture m;
    m.host();
    m.machine.secrets.setHangs(true);
    m.machine.secrets.items.insert(u"groq_api_key"_s, "gsk_1"); // and has news
    QCOMPARE(dictate(m), u"one two three"_s);
    m.host().signIn().signOutThisMac();
    m.machine.defaults.values.insert(u"provider"_s, u"groq"_s);
    m.speak();
    QVERIFY(m.flow().state() == FlowState::processing && m.machine.http.waiting() == 0);
    QVERIFY(m.host().account().signedIn());
    m.machine.http.willAnswer(204, {}); // the end of the session
    m.machine.secrets.setHangs(false);
    QVERIFY(!m.host().account().signedIn());
    m.answerText(u"late"_s); // the recording went out as soon as there was a key
    m.finishPaste();
    QCOMPARE(m.flow().lastTranscript(), u"late"_s);
}

void ClosedKeyringTest::leavingWhileTheKeyringHangsKeepsTheRecording()
{
    FlowFixture m;
    m.machine.secrets.setHangs(true);
    m.host();
    m.speak();
    QCOMPARE(m.flow().state(), FlowState::processing);
    m.quit();
    QVERIFY(m.machine.folders.recordings().size() == 1 && m.machine.clock.pendingTimers() == 0);
}

void ClosedKeyringTest::aKeyringThatComesLaterCounts()
{
    for (const auto delay : {1s, 3s}) {
        FlowFixture m;
        m.machine.secrets.setTrouble(SecretStatus::notAvailable);
        QVERIFY(!m.host().account().signedIn());
        m.machine.clock.advance(delay);
        m.machine.secrets.setTrouble(SecretStatus::success);
        QVERIFY(m.host().account().signedIn());
        m.machine.clock.advance(1min);
        QCOMPARE(m.dashboardsShown, delay > 2s ? 1 : 0); // until then there was none
        m.host().signIn().signOutThisMac();
        m.machine.http.answer(204, {});
        m.machine.secrets.items.insert(u"sayvane_session"_s, "svs_token");
        QVERIFY(!m.host().account().signedIn()); // whoever signed out stays out
    }
}

QTEST_GUILESS_MAIN(ClosedKeyringTest)
#include "ClosedKeyringTest.moc"
