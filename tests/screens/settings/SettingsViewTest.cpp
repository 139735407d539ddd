#include "screens/settings/SettingsView.h"

#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountSession.h"
#include "cloud/account/AccountSignIn.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/account/Credentials.h"
#include "cloud/speech/Transcriber.h"
#include "dictation/HotkeyRecorder.h"
#include "preferences/Keychain.h"
#include "support/FakeMachine.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A settings form over a fake machine.
struct Fixture
{
    FakeMachine machine;
    Keychain keychain{machine.secrets};
    Prefs prefs{machine.defaults, u"https://service.test"_s};
    AccountSessionStore sessions{keychain};
    AccountStatus status{sessions, prefs};
    Credentials credentials{keychain, sessions};
    AccountClient client{{prefs, sessions, status, machine.http, machine.clock}};
    AccountSignIn signIn{{client, sessions, status, keychain, machine.computerName, machine.clock}};
    Transcriber transcriber{{prefs, credentials, sessions, status, machine.http, machine.clock}};
    std::function<void(const HotkeySpec &)> update = [this](const HotkeySpec &spec) { prefs.hotkeySpec.set(spec); };
    HotkeyRecorder recorder{machine.localKeys, [] { return nullptr; }, update};
    SettingsForms forms{{machine.platform, prefs, keychain, sessions, status, signIn, transcriber, recorder, update}};
    std::unique_ptr<SettingsView> opened; // while there is one

    Fixture() { prefs.registerDefaults(keychain); }

    /// A form that somebody looks at, made when it is first needed.
    SettingsView &form()
    {
        if (!opened) {
            opened.reset(forms.open(nullptr));
            opened->setShown(true);
        }
        return *opened;
    }
    KeyRow &key() { return *form().key(); }
    void choose(const QString &provider) { form().setProviderSelection(provider); }
    QString keyIn(const QString &account) const { return QString::fromUtf8(machine.secrets.items.value(account)); }
    QString models() const { return prefs.transcriptionModel() + u'|' + prefs.chatModel(); }
};

} // namespace

class SettingsViewTest final : public QObject
{
    Q_OBJECT

    std::unique_ptr<Fixture> m;

private Q_SLOTS:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void savesAKey()
    {
        // the account, what it holds, what is typed, what it holds then, what is said
        const std::initializer_list<std::tuple<QString, QString, QString, QString, QString>> cases{
            {u"groq"_s, u""_s, u" \n"_s, u""_s, u"Type or paste a key first."_s},
            {u"groq"_s, u"gsk_old9"_s, u""_s, u"gsk_old9"_s,
             u"Nothing typed. The saved key is unchanged. Use Remove key to delete it."_s},
            {u"groq"_s, u""_s, u" gsk_abcdef\n"_s, u"gsk_abcdef"_s, u""_s},
            {u"openai"_s, u""_s, u"ab"_s, u"ab"_s, u""_s}, // shorter than what is shown of it
            {u"openai"_s, u"sk-old9"_s, u" gsk_1 "_s, u"sk-old9"_s,
             u"! This looks like a Groq key. Switch Provider to Groq or paste a OpenAI key."_s},
            {u"groq"_s, u""_s, u"SK-1"_s, u"SK-1"_s, u""_s},
            {u"groq"_s, u""_s, u"gsk_locked"_s, u""_s, u"! Couldn't save to Keychain: The keyring is locked."_s},
        };
        for (const auto &[provider, before, typed, after, said] : cases) {
            m = std::make_unique<Fixture>();
            const QString account = provider + u"_api_key"_s;
            if (!before.isEmpty())
                m->machine.secrets.items.insert(account, before.toUtf8());
            if (typed == u"gsk_locked")
                m->machine.secrets.addStatus = SecretStatus::interactionNotAllowed;
            m->choose(provider);
            KeyRow &row = m->key();
            row.setShowKey(true);
            row.setKeyFieldFocused(true);
            row.setApiKey(typed);
            row.saveKey();
            const bool saved = after == typed.trimmed() && after != before;
            QCOMPARE(m->keyIn(account), after);
            QCOMPARE((row.keyError().isEmpty() ? QString() : u"! "_s) + row.keyError() + row.keyNotice(), said);
            const QString start = provider == u"groq" ? u"gsk_…"_s : u"sk-…"_s;
            QCOMPARE(row.keyPlaceholder(),
                     after.isEmpty() ? start
                                     : u"Key saved (%1%2). Enter a new key to replace it"_s.arg(start, after.right(4)));
            QCOMPARE(row.apiKey(), saved ? QString() : typed);
            QVERIFY(row.keySaved() == saved && row.showKey() != saved && row.keyFieldFocused() != saved);
            QCOMPARE(m->machine.http.waiting(), saved ? 1 : 0); // its test
            // What was said holds until the user types on.
            row.setApiKey(u"x"_s);
            QVERIFY(row.keyError().isEmpty() && row.keyNotice().isEmpty() && !row.keySaved());
        }
    }

    void removesTheKey()
    {
        m->machine.secrets.items.insert(u"groq_api_key"_s, "gsk_abcdef");
        m->choose(u"groq"_s);
        KeyRow &row = m->key();
        row.setApiKey(u"half"_s);
        m->machine.secrets.removeStatus = SecretStatus::interactionNotAllowed;
        row.removeKey();
        QCOMPARE(row.keyError(), u"Couldn't remove from Keychain: The keyring is locked."_s);
        QVERIFY(row.keyStored() && row.apiKey() == u"half");
        m->machine.secrets.removeStatus = SecretStatus::success;
        row.testConnection();
        m->machine.http.answer(500, {});
        QVERIFY(!row.connectionError().isEmpty());
        row.removeKey();
        QVERIFY(m->machine.secrets.items.isEmpty() && !row.keyStored() && row.connectionError().isEmpty());
        QVERIFY(row.keyError().isEmpty() && row.apiKey().isEmpty() && row.keyNotice() == u"Key removed.");
    }

    void waitsForTheKeyring()
    {
        FakeSecretStore &secrets = m->machine.secrets;
        secrets.setTrouble(SecretStatus::interactionNotAllowed);
        secrets.items = {{u"groq_api_key"_s, "gsk_old9"}, {u"sayvane_session"_s, "svs_1"}};
        m->prefs.provider.set(Provider::groq);
        KeyRow &row = m->key();
        m->machine.clock.advance(1min);
        QCOMPARE(secrets.asked, 2); // for the key and the session, as the form was opened, and by no timer
        QVERIFY(!row.keyStored() && !m->prefs.advancedExpanded() && m->machine.http.waiting() == 0);
        secrets.setTrouble(SecretStatus::success);
        QVERIFY(row.keyStored() && !m->prefs.advancedExpanded() && m->status.signedIn());
        QCOMPARE(m->machine.http.waiting(), 2); // the account and its devices
        // A save takes as long as the owner does, and is one save.
        secrets.setHangs(true);
        row.setApiKey(u"gsk_new1"_s);
        row.saveKey();
        row.saveKey();
        row.removeKey();
        QCOMPARE(row.keyNotice(), u"Waiting for the Keychain. It may ask you first."_s);
        QCOMPARE(row.keySuffix(), u"old9"_s);
        secrets.setHangs(false);
        QVERIFY(row.keySaved() && row.keyNotice().isEmpty() && row.apiKey().isEmpty() && row.keySuffix() == u"new1");
        // Nobody is told of another provider's key, nor a form that is gone.
        secrets.setHangs(true);
        row.setApiKey(u"gsk_new2"_s);
        row.saveKey();
        m->choose(u"openai"_s);
        row.setApiKey(u"sk-typed"_s);
        secrets.setHangs(false);
        QVERIFY(!row.keySaved() && row.apiKey() == u"sk-typed");
        QCOMPARE(m->keyIn(u"groq_api_key"_s), u"gsk_new2"_s);
        secrets.setHangs(true);
        row.saveKey();
        m->opened.reset();
        secrets.setHangs(false);
        QCOMPARE(m->keyIn(u"openai_api_key"_s), u"sk-typed"_s);
    }

    void pastesAKeyThatIsNotYetSaved()
    {
        const PasteboardData picture{u"image/png"_s, "\x89PNG"};
        const PasteboardData blanks{u"UTF8_STRING"_s, " \n"};
        m->choose(u"groq"_s);
        KeyRow &row = m->key();
        for (const QList<PasteboardItem> &nothing : {QList<PasteboardItem>{}, {{picture}}, {{blanks}}}) {
            m->machine.pasteboard.contents = nothing;
            row.pasteKey();
            QCoreApplication::processEvents();
            QCOMPARE(row.keyNotice(), u"The clipboard has no text on it."_s);
            QVERIFY(row.apiKey().isEmpty() && !row.keyFieldFocused());
        }
        m->machine.pasteboard.contents = {{picture, {u"text/plain"_s, " gsk_1\n"}}};
        row.pasteKey();
        QCoreApplication::processEvents();
        QVERIFY(row.apiKey() == u"gsk_1" && row.keyFieldFocused() && row.keyNotice().isEmpty());
        QVERIFY(m->machine.secrets.items.isEmpty());
    }

    void aSavedKeyIsTested()
    {
        m->choose(u"groq"_s);
        m->prefs.chatModel.set(u"gone"_s);
        KeyRow &row = m->key();
        row.setApiKey(u"gsk_abcdef"_s);
        row.saveKey();
        QVERIFY(row.testingConnection());
        m->machine.http.answer(200, R"({"data":[{"id":"whisper-large-v3-turbo"},{"id":"qwen-7b"}]})");
        QCOMPARE(row.connectionStatus(), u"Connected to Groq: 2 models available"_s);
        QCOMPARE(row.connectionDetail(), u"Cleanup model updated to qwen-7b. In use: whisper-large-v3-turbo for "
                                         "transcription, qwen-7b for cleanup."_s);
        // The next test starts with a clean sheet, and a refusal stands in its own words.
        row.testConnection();
        QVERIFY((row.connectionStatus() + row.connectionDetail()).isEmpty());
        m->machine.http.answer(401, {});
        QCOMPARE(row.connectionError(), u"Groq: API key rejected. Check it in Settings."_s);
        // Nobody is told what a provider answers that is no longer chosen.
        m->machine.secrets.items.insert(u"openai_api_key"_s, "sk-1");
        for (const int answer : {200, 401}) {
            m->choose(u"groq"_s);
            row.testConnection();
            m->choose(u"openai"_s);
            m->machine.http.answer(answer, R"({"data":[{"id":"llama"}]})");
            QVERIFY(!row.testingConnection() && row.connectionStatus().isEmpty() && row.connectionError().isEmpty());
            QCOMPARE(m->prefs.chatModel(), u"qwen-7b"_s);
        }
        // A form that has gone leaves no test behind.
        row.testConnection();
        m->opened.reset();
        QCOMPARE(m->machine.http.waiting(), 0);
    }

    void switchingTheProviderAdoptsItsModels()
    {
        const QString groq = u"whisper-large-v3-turbo|openai/gpt-oss-120b"_s;
        const QString openai = u"gpt-4o-mini-transcribe|gpt-4o-mini"_s;
        const std::initializer_list<std::tuple<QString, QString, QString, QString>> cases{
            {u"groq"_s, groq, u"openai"_s, openai},
            {u"openai"_s, u" gpt-4o-mini-transcribe |"_s, u"groq"_s, groq},
            {u"groq"_s, u"mine|yours"_s, u"openai"_s, u"mine|yours"_s},
            {u"groq"_s, groq, u"sayvane"_s, groq},
            {u"sayvane"_s, u"|mine"_s, u"groq"_s, u"whisper-large-v3-turbo|mine"_s},
            {u"nobody"_s, u"x|y"_s, u"sayvane"_s, u"x|y"_s},
        };
        for (const auto &[from, models, to, after] : cases) {
            m = std::make_unique<Fixture>();
            m->machine.defaults.values.insert(u"provider"_s, from);
            m->key().setApiKey(u"typed"_s);
            m->prefs.transcriptionModel.set(models.section(u'|', 0, 0));
            m->prefs.chatModel.set(models.section(u'|', 1));
            m->prefs.provider.set(*Providers::fromRawValue(to)); // be it here or elsewhere
            QCOMPARE(m->models(), after);
            QCOMPARE(m->key().apiKey(), from == u"nobody" ? u"typed"_s : QString());
            m->form().resetModels();
            QCOMPARE(m->models(), to == u"groq" ? groq : to == u"openai" ? openai : u"|"_s);
        }
        m->choose(u"nobody"_s);
        QCOMPARE(m->form().providerSelection(), u"sayvane"_s);
    }

    void opensTheAdvancedGroupWithoutAKey()
    {
        const auto isExpandedAfter = [&](const QString &provider) {
            m->prefs.advancedExpanded.set(false);
            m->choose(provider);
            return m->prefs.advancedExpanded();
        };
        m->machine.secrets.items = {{u"openai_api_key"_s, "sk-1"}};
        QVERIFY(isExpandedAfter(u"groq"_s) && !isExpandedAfter(u"openai"_s) && !isExpandedAfter(u"sayvane"_s));
        m->choose(u"groq"_s);
        m->prefs.advancedExpanded.set(false);
        // Once per form, however often it is shown.
        m->form().setShown(false);
        m->form().setShown(true);
        QVERIFY(!m->prefs.advancedExpanded());
        m->opened.reset(), m->form();
        QVERIFY(m->prefs.advancedExpanded());
    }

    void choosesALanguage()
    {
        LanguageChoice &choice = *m->form().language();
        QVERIFY(choice.entries().size() == 15 && choice.selection().isEmpty());
        choice.select(u"gu"_s);
        choice.select(u"other"_s);
        QVERIFY(choice.selection() == u"other" && m->prefs.language() == u"gu");
        choice.setCode(u" NE "_s);
        QCOMPARE(m->prefs.language(), u"ne"_s);
        choice.select(u"en"_s);
        QVERIFY(!choice.showsOther() && choice.selection() == u"en");
        m->prefs.language.set(u"xx"_s);
        QCOMPARE(choice.selection(), u"other"_s);
        m->prefs.language.set(u" EN "_s);
        QCOMPARE(choice.selection(), u"en"_s);
    }

    void takesAServiceAddress()
    {
        ServiceAddress &row = *m->form().service();
        const std::initializer_list<std::pair<QString, QString>> cases{
            {u" https://B.test// "_s, u"https://B.test"_s},
            {u"http://b.test"_s, u"https://a.test"_s},
            {u" "_s, u"https://service.test"_s},
        };
        for (const auto &[typed, inUse] : cases) {
            m->prefs.accountBaseURL.set(u"https://a.test"_s);
            QVERIFY(row.serviceURLDraft() == u"https://a.test" && !row.canApply());
            row.setServiceURLDraft(typed);
            QVERIFY(row.canApply());
            row.applyServiceURL();
            QVERIFY(m->prefs.accountBaseURL() == inUse && row.serviceURLDraft() == inUse);
            QCOMPARE(row.serviceURLError().endsWith(u"like https://service.test."), inUse == u"https://a.test");
        }
        row.setServiceURLDraft(u"http://"_s);
        row.applyServiceURL();
        row.setServiceURLDraft(u"h"_s);
        m->prefs.accountBaseURL.set(u"https://c.test"_s); // what is being typed is not taken away
        QVERIFY(row.serviceURLDraft() == u"h" && row.serviceURLError().isEmpty());
    }

    void followsWhatChangesElsewhere()
    {
        m->machine.trust.trusted = false;
        m->choose(u"groq"_s);
        SettingsView &form = m->form();
        m->machine.secrets.items.insert(u"groq_api_key"_s, "gsk_wxyz");
        QCOMPARE(m->key().keySuffix(), u"wxyz"_s);
        m->machine.trust.trusted = true;
        m->machine.microphone.authorized = Microphone::Authorization::denied;
        m->machine.clock.advance(1999ms);
        QVERIFY(!form.axTrusted() && form.micGranted());
        QSignalSpy changes(&form, &SettingsView::changed);
        m->machine.clock.advance(2001ms); // looks twice
        QVERIFY(form.axTrusted() && !form.micGranted() && changes.size() == 1);
        form.setShown(false);
        m->machine.trust.trusted = false;
        m->machine.clock.advance(10s);
        QVERIFY(form.axTrusted());
    }

    void asksForTheAccountOncePerForm()
    {
        QVERIFY(m->form().shown() && m->machine.http.waiting() == 0); // nobody is signed in
        m->opened.reset();
        m->sessions.save(u"svs_1"_s);
        m->status.adopt({.token = u"svs_1"_s, .email = u"a@b.test"_s});
        AccountArea &area = *m->form().account();
        QVERIFY(area.leftToday() == u"Not known yet" && m->machine.http.waiting() == 2);
        m->machine.http.answer(200, R"({"email":"a@b.test","dailyMinutes":30,"remainingSeconds":720})");
        m->machine.http.answer(200, R"([{"id":"1","device":"Study","current":true}])");
        QCOMPARE(area.allowance() + area.leftToday(), u"30 minutes a day12 minutes"_s);
        m->machine.clock.zone = QTimeZone(3600);
        QCOMPARE(area.lastUsed({}), u"Last used: not known"_s);
        QVERIFY(area.lastUsed(QDateTime({2026, 3, 1}, {23, 30}, Qt::UTC)).contains(u"00:30"_s));
        m->form().setShown(false);
        m->form().setShown(true);
        QCOMPARE(m->machine.http.waiting(), 0);
    }

    void choosesAShortcut()
    {
        ShortcutRows &rows = *m->form().shortcut();
        QVERIFY(rows.shortcut() == u"Fn + Space" && rows.usesFn());
        rows.change();
        m->machine.localKeys.send({LocalKeyEventType::keyDown, 2, KeyFlags::command | KeyFlags::shift});
        QVERIFY(!rows.capturing() && !rows.usesFn() && rows.shortcut() == u"⇧⌘D");
        rows.change();
        rows.resetToDefault();
        QVERIFY(!rows.capturing() && m->prefs.hotkeySpec() == HotkeySpec());
        m->machine.keyTaps.heldBy = u"“Switch applications”"_s;
        QVERIFY(rows.obstacle().isEmpty());
        m->machine.clock.advance(2s);
        QCOMPARE(rows.obstacle(),
                 u"“Switch applications” already has this shortcut. Choose another one, or free it there."_s);
        rows.change();
        m->form().setShown(false); // nobody would know that keys still go there
        QVERIFY(!rows.capturing());
    }
};

QTEST_GUILESS_MAIN(SettingsViewTest)
#include "SettingsViewTest.moc"
