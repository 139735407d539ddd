#include "screens/labs/LabsView.h"

#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountSession.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/account/Credentials.h"
#include "cloud/labs/LabsClient.h"
#include "dictation/TextInserter.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "support/FakeMachine.h"

#include <QTest>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The Labs screen of somebody who is signed in.
struct Fixture
{
    FakeMachine machine;
    Keychain keychain{machine.secrets};
    Prefs prefs{machine.defaults, u"https://service.test"_s};
    AccountSessionStore sessions{keychain};
    AccountStatus status{sessions, prefs};
    Credentials credentials{keychain, sessions};
    AccountClient account{{prefs, sessions, status, machine.http, machine.clock}};
    LabsClient client{account, credentials};
    LabsSession session{{client, status, prefs, machine.clock}};
    LabsAnswerMode answerMode{prefs, machine.clock};
    TextInserter inserter{machine.pasteboard, machine.keyPoster, machine.trust, machine.presence, prefs, machine.clock};
    FlowState flow = FlowState::idle;
    std::function<void(const QString &)> capture;
    int finished = 0;
    int settingsOpened = 0;
    LabsView view{{session,
                   answerMode,
                   prefs,
                   machine.pasteboard,
                   inserter,
                   {[this] { return flow; }, [this](auto into) { capture = into; }, [this] { ++finished; }},
                   [this] { ++settingsOpened; }}};

    Fixture() { sessions.save(u"svs_1"_s); }
    void offer(const QByteArray &providers)
    {
        session.loadProviders();
        machine.http.answer(200, providers);
    }
    void ask(const QString &prompt, const QByteArray &answer)
    {
        session.setPrompt(prompt);
        view.ask();
        machine.http.answer(200, answer);
    }
};

} // namespace

class LabsViewTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void isUsableWithTheHostedServiceAlone_data();
    void isUsableWithTheHostedServiceAlone();
    void selectsAnAssistantThatIsOffered_data();
    void selectsAnAssistantThatIsOffered();
    void speaksOfTheMode();
    void answerModeCanAlwaysBeLeft();
    void dictatesThePrompt();
    void headsTheAnswer_data();
    void headsTheAnswer();
    void copiesAndPastesTheAnswer();

private:
    std::unique_ptr<Fixture> m;
};

void LabsViewTest::isUsableWithTheHostedServiceAlone_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<bool>("usable");
    QTest::newRow("own key") << "groq" << false;
    QTest::newRow("other own key") << "openai" << false;
    QTest::newRow("hosted") << "sayvane" << true;
    QTest::newRow("unknown") << "nobody" << true;
}

void LabsViewTest::isUsableWithTheHostedServiceAlone()
{
    QFETCH(const QString, provider);
    QFETCH(const bool, usable);
    m->machine.defaults.values.insert(u"provider"_s, provider);
    QCOMPARE(m->view.usable(), usable);
    m->view.appear();
    m->view.appear(); // once in a run
    QCOMPARE(m->machine.http.waiting(), usable ? 1 : 0);
    m->view.openSettings();
    QCOMPARE(m->settingsOpened, 1);
}

void LabsViewTest::selectsAnAssistantThatIsOffered_data()
{
    QTest::addColumn<QByteArray>("offered");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("notice");
    const QByteArray both = R"({"claude":true,"chatgpt":true})";
    const QString none = u"Labs is not offered on this server right now."_s;
    QTest::newRow("the stored one") << both << "chatgpt"
                                    << "chatgpt"
                                    << "";
    QTest::newRow("none stored") << both << ""
                                 << "claude"
                                 << "";
    QTest::newRow("unknown stored") << both << "CHATGPT"
                                    << "claude"
                                    << "";
    QTest::newRow("stored is not offered") << QByteArray(R"({"claude":true,"chatgpt":false})") << "chatgpt"
                                           << "claude"
                                           << "";
    QTest::newRow("only the other") << QByteArray(R"({"claude":false,"chatgpt":true})") << ""
                                    << "chatgpt"
                                    << "";
    QTest::newRow("nobody") << QByteArray(R"({"claude":false,"chatgpt":false})") << "chatgpt"
                            << "claude" << none;
    QTest::newRow("unreadable") << QByteArray("{}") << ""
                                << "claude"
                                << "Sayvane sent something this app could not read.";
}

void LabsViewTest::selectsAnAssistantThatIsOffered()
{
    QFETCH(const QByteArray, offered);
    QFETCH(const QString, stored);
    QFETCH(const QString, notice);
    m->prefs.labsProvider.set(stored);
    m->offer(offered);
    QTEST(LabsProviderNames::rawValue(m->view.selectedProvider()), "selected");
    QCOMPARE(m->view.providersNotice(), notice);
    QCOMPARE(m->view.providers().isEmpty(), !notice.isEmpty());
    QCOMPARE(m->prefs.labsProvider(), stored); // until the user picks
    m->session.loadProviders();
    QVERIFY(m->view.providersNotice().isEmpty());
    m->view.selectProvider(u"chatgpt"_s);
    QCOMPARE(m->prefs.labsProvider(), u"chatgpt"_s);
}

void LabsViewTest::speaksOfTheMode()
{
    m->session.setPrompt(u"häß 👩‍👧"_s);
    QCOMPARE(m->view.promptCount(), u"5/8000"_s);
    m->session.setMode(LabsMode::rewrite);
    m->session.setContext(u"text"_s);
    QCOMPARE(m->view.promptLabel(), u"How to rewrite it"_s);
    QCOMPARE(m->view.contextLabel(), u"Paste the text to rewrite"_s);
    m->session.setMode(LabsMode::answer);
    QVERIFY(m->view.contextLabel().isEmpty());
    m->session.setMode(LabsMode::reply);
    QCOMPARE(m->view.modeHint(), u"Draft a reply to a message you paste in below."_s);
    QCOMPARE(m->view.contextCount(), u"4/4000"_s); // what was written is still there
    QVERIFY(m->view.answerModeCaption().contains(u"answered by Claude and"_s));
}

void LabsViewTest::answerModeCanAlwaysBeLeft()
{
    const auto switchable = [this](bool isOn) {
        m->answerMode.setEnabled(isOn);
        return m->view.canSwitchAnswerMode();
    };
    m->prefs.labsProvider.set(u"chatgpt"_s);
    QVERIFY(!switchable(false) && switchable(true));
    QVERIFY(m->view.answerModeCaption().contains(u"answered by ChatGPT and"_s)); // who is asked as things are
    m->offer(R"({"claude":true,"chatgpt":false})");
    QVERIFY(switchable(false) && switchable(true));
    QVERIFY(m->view.answerModeCaption().contains(u"answered by Claude and"_s));
}

void LabsViewTest::dictatesThePrompt()
{
    m->view.dictate();
    QVERIFY(m->capture && m->finished == 0);
    m->flow = FlowState::recording;
    QVERIFY(m->view.dictating());
    m->view.dictate();
    QCOMPARE(m->finished, 1);
    m->capture(u"What is it?"_s);
    QCOMPARE(m->session.prompt(), u"What is it?"_s);
}

void LabsViewTest::headsTheAnswer_data()
{
    QTest::addColumn<QByteArray>("named");
    QTest::addColumn<QString>("heading");
    QTest::newRow("known") << QByteArray(R"("provider":"chatgpt","model":"gpt-4o")") << u"ChatGPT · gpt-4o"_s;
    QTest::newRow("unknown") << QByteArray(R"("provider":"some LAB","model":"m")") << u"Some Lab · m"_s;
    QTest::newRow("not named") << QByteArray(R"("model":"m")") << u"Claude · m"_s;
    QTest::newRow("no model") << QByteArray(R"("provider":"claude")") << u"Claude · "_s;
}

void LabsViewTest::headsTheAnswer()
{
    QFETCH(const QByteArray, named);
    m->offer(R"({"claude":true,"chatgpt":true})");
    QVERIFY(m->view.answerHeading().isEmpty() && !m->view.hasAnswer());
    m->ask(u"Why?"_s, R"({"text":"So.",)" + named + '}');
    QTEST(m->view.answerHeading(), "heading");
}

void LabsViewTest::copiesAndPastesTheAnswer()
{
    m->machine.pasteboard.setString(u"before"_s);
    m->view.copyAnswer();
    m->view.pasteAnswer();
    QCOMPARE(m->machine.pasteboard.text(), u"before"_s); // there is no answer
    m->offer(R"({"claude":true,"chatgpt":false})");
    m->ask(u"Why?"_s, R"({"text":" So. "})");
    m->view.copyAnswer();
    QCOMPARE(m->machine.pasteboard.text(), u"So."_s);
    m->machine.pasteboard.setString(u"between"_s);
    m->view.pasteAnswer();
    m->machine.clock.advance(1s);
    QTRY_COMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"So."_s});
    QCOMPARE(m->machine.pasteboard.text(), u"So."_s); // it can be pasted again by hand
}

QTEST_GUILESS_MAIN(LabsViewTest)
#include "LabsViewTest.moc"
