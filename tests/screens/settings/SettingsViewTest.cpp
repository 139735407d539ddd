#include "screens/settings/SettingsFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class SettingsViewTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<SettingsFixture>(); }
    void cleanup() { m.reset(); }

    void savesAKey_data();
    void savesAKey();
    void removesTheKey();
    void waitsForTheKeyring();
    void pastesAKeyThatIsNotYetSaved_data();
    void pastesAKeyThatIsNotYetSaved();
    void aSavedKeyIsTested();
    void dropsTheResultOfAProviderNoLongerChosen();
    void switchingTheProviderAdoptsItsModels_data();
    void switchingTheProviderAdoptsItsModels();
    void opensTheAdvancedGroupWithoutAKey();
    void choosesALanguage();
    void takesAServiceAddress_data();
    void takesAServiceAddress();
    void followsWhatChangesElsewhere();
    void asksForTheAccountOncePerForm();
    void choosesAShortcut();

private:
    std::unique_ptr<SettingsFixture> m;
};

void SettingsViewTest::savesAKey_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("refusal");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("notice");
    QTest::addColumn<QString>("placeholder");
    const int ok = SecretStatus::success;
    QTest::newRow("nothing typed, none stored") << "groq"
                                                << ""
                                                << " \n"
                                                << ok << ""
                                                << ""
                                                << "Type or paste a key first."
                                                << "gsk_…";
    QTest::newRow("nothing typed, one stored")
        << "groq"
        << "gsk_old9"
        << "" << ok << "gsk_old9"
        << ""
        << "Nothing typed. The saved key is unchanged. Use Remove key to delete it."
        << "Key saved (gsk_…old9). Enter a new key to replace it";
    QTest::newRow("trimmed") << "groq"
                             << ""
                             << " gsk_abcdef\n"
                             << ok << "gsk_abcdef"
                             << ""
                             << ""
                             << "Key saved (gsk_…cdef). Enter a new key to replace it";
    QTest::newRow("unknown form, shorter than its suffix") << "openai"
                                                           << ""
                                                           << "ab" << ok << "ab"
                                                           << ""
                                                           << ""
                                                           << "Key saved (sk-…ab). Enter a new key to replace it";
    QTest::newRow("OpenAI key for Groq")
        << "groq"
        << "gsk_old9"
        << " sk-1 " << ok << "gsk_old9"
        << "This looks like a OpenAI key. Switch Provider to OpenAI or paste a Groq key."
        << ""
        << "Key saved (gsk_…old9). Enter a new key to replace it";
    QTest::newRow("Groq key for OpenAI") << "openai"
                                         << ""
                                         << "gsk_1" << ok << ""
                                         << "This looks like a Groq key. Switch Provider to Groq or paste a OpenAI key."
                                         << ""
                                         << "sk-…";
    QTest::newRow("prefix in capitals") << "groq"
                                        << ""
                                        << "SK-1" << ok << "SK-1"
                                        << ""
                                        << ""
                                        << "Key saved (gsk_…SK-1). Enter a new key to replace it";
    QTest::newRow("keyring locked") << "groq"
                                    << ""
                                    << "gsk_1" << int(SecretStatus::interactionNotAllowed) << ""
                                    << "Couldn't save to Keychain: The keyring is locked."
                                    << ""
                                    << "gsk_…";
}

void SettingsViewTest::savesAKey()
{
    QFETCH(const QString, provider);
    QFETCH(const QString, before);
    QFETCH(const QString, typed);
    QFETCH(const int, refusal);
    QFETCH(const QString, after);
    QFETCH(const QString, error);
    const QString account = provider + u"_api_key"_s;
    if (!before.isEmpty())
        m->machine.secrets.items.insert(account, before.toUtf8());
    m->machine.secrets.addStatus = refusal;
    m->choose(provider);
    KeyRow &row = *m->form().key();
    row.setShowKey(true);
    row.setKeyFieldFocused(true);
    row.setApiKey(typed);
    row.saveKey();
    const bool saved = after == typed.trimmed() && after != before;
    QCOMPARE(m->keyIn(account), after);
    QCOMPARE(row.keyError(), error);
    QTEST(row.keyNotice(), "notice");
    QTEST(row.keyPlaceholder(), "placeholder");
    QCOMPARE(row.keySaved(), saved);
    QCOMPARE(row.apiKey(), saved ? QString() : typed);
    QCOMPARE(row.showKey(), !saved);
    QCOMPARE(row.keyFieldFocused(), !saved);
    QCOMPARE(m->machine.http.waiting(), saved ? 1 : 0);
    // What was said holds until the user types on.
    row.setApiKey(u"x"_s);
    QVERIFY(row.keyError().isEmpty() && row.keyNotice().isEmpty() && !row.keySaved());
}

void SettingsViewTest::removesTheKey()
{
    m->machine.secrets.items.insert(u"groq_api_key"_s, "gsk_abcdef");
    m->choose(u"groq"_s);
    KeyRow &row = *m->form().key();
    row.setApiKey(u"half"_s);
    m->machine.secrets.removeStatus = SecretStatus::interactionNotAllowed;
    row.removeKey();
    QCOMPARE(row.keyError(), u"Couldn't remove from Keychain: The keyring is locked."_s);
    QVERIFY(row.keyStored() && row.apiKey() == u"half");
    m->machine.secrets.removeStatus = SecretStatus::success;
    m->form().connection()->testConnection();
    m->machine.http.answer(500, {});
    QVERIFY(!m->form().connection()->connectionError().isEmpty());
    row.removeKey();
    QVERIFY(m->machine.secrets.items.isEmpty());
    QVERIFY(row.keyError().isEmpty() && row.apiKey().isEmpty() && !row.keyStored());
    QCOMPARE(row.keyNotice(), u"Key removed."_s);
    QVERIFY(m->form().connection()->connectionError().isEmpty());
}

void SettingsViewTest::waitsForTheKeyring()
{
    FakeSecretStore &secrets = m->machine.secrets;
    secrets.setTrouble(SecretStatus::interactionNotAllowed);
    secrets.items = {{u"groq_api_key"_s, "gsk_old9"}, {u"sayvane_session"_s, "svs_1"}};
    m->defaults.set(u"provider"_s, u"groq"_s);
    KeyRow &row = *m->form().key();
    m->machine.clock.advance(1min);
    QCOMPARE(secrets.asked, 2); // for the key and the session, as the form was opened, and by no timer
    QVERIFY(!row.keyStored() && !m->form().preferences()->advancedExpanded() && m->machine.http.waiting() == 0);
    secrets.setTrouble(SecretStatus::success);
    QVERIFY(row.keyStored() && !m->form().preferences()->advancedExpanded());
    QVERIFY(m->status.signedIn() && m->machine.http.waiting() == 2); // the account and its devices
    // A save takes as long as the owner does, and is one save.
    secrets.setHangs(true);
    row.setApiKey(u"gsk_new1"_s);
    row.saveKey();
    row.saveKey();
    row.removeKey();
    QCOMPARE(row.keyNotice(), u"Waiting for the Keychain. It may ask you first."_s);
    QCOMPARE(row.keySuffix(), u"old9"_s);
    secrets.setHangs(false);
    QVERIFY(row.keySaved() && row.keyNotice().isEmpty() && row.apiKey().isEmpty());
    QCOMPARE(row.keySuffix(), u"new1"_s);
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
    m->closeForm();
    secrets.setHangs(false);
    QCOMPARE(m->keyIn(u"openai_api_key"_s), u"sk-typed"_s);
}

void SettingsViewTest::pastesAKeyThatIsNotYetSaved_data()
{
    QTest::addColumn<QList<PasteboardItem>>("clipboard");
    QTest::addColumn<QString>("field");
    const PasteboardData picture{u"image/png"_s, "\x89PNG"};
    QTest::newRow("nothing") << QList<PasteboardItem>{} << QString();
    QTest::newRow("a picture") << QList<PasteboardItem>{{picture}} << QString();
    QTest::newRow("blanks") << QList<PasteboardItem>{{{u"UTF8_STRING"_s, " \n"}}} << QString();
    QTest::newRow("text beside a picture")
        << QList<PasteboardItem>{{picture, {u"text/plain"_s, " gsk_1\n"}}} << u"gsk_1"_s;
}

void SettingsViewTest::pastesAKeyThatIsNotYetSaved()
{
    QFETCH(const QString, field);
    QFETCH(const QList<PasteboardItem>, clipboard);
    m->choose(u"groq"_s);
    m->machine.pasteboard.contents = clipboard;
    KeyRow &row = *m->form().key();
    row.pasteKey();
    QCoreApplication::processEvents();
    QCOMPARE(row.apiKey(), field);
    QCOMPARE(row.keyFieldFocused(), !field.isEmpty());
    QCOMPARE(row.keyNotice(), field.isEmpty() ? u"The clipboard has no text on it."_s : QString());
    QVERIFY(m->machine.secrets.items.isEmpty());
}

void SettingsViewTest::aSavedKeyIsTested()
{
    m->choose(u"groq"_s);
    m->form().preferences()->setChatModel(u"gone"_s);
    m->form().key()->setApiKey(u"gsk_abcdef"_s);
    m->form().key()->saveKey();
    ConnectionTest &test = *m->form().connection();
    QVERIFY(test.testingConnection());
    m->machine.http.answer(200, R"({"data":[{"id":"whisper-large-v3-turbo"},{"id":"qwen-7b"}]})");
    QVERIFY(!test.testingConnection());
    QCOMPARE(test.connectionStatus(), u"Connected to Groq: 2 models available"_s);
    QCOMPARE(test.connectionDetail(), u"Cleanup model updated to qwen-7b. In use: whisper-large-v3-turbo for "
                                      "transcription, qwen-7b for cleanup."_s);
    QCOMPARE(m->form().preferences()->chatModel(), u"qwen-7b"_s);
    // The next test starts with a clean sheet, and a refusal stands in its own words.
    test.testConnection();
    QVERIFY(test.connectionStatus().isEmpty() && test.connectionDetail().isEmpty());
    m->machine.http.answer(401, {});
    QCOMPARE(test.connectionError(), u"Groq: API key rejected. Check it in Settings."_s);
    // A form that has gone leaves no test behind.
    test.testConnection();
    m->closeForm();
    QCOMPARE(m->machine.http.waiting(), 0);
}

void SettingsViewTest::dropsTheResultOfAProviderNoLongerChosen()
{
    m->machine.secrets.items = {{u"groq_api_key"_s, "gsk_1"}, {u"openai_api_key"_s, "sk-1"}};
    m->choose(u"groq"_s);
    ConnectionTest &test = *m->form().connection();
    for (const int status : {200, 401}) {
        m->choose(u"groq"_s);
        test.testConnection();
        m->choose(u"openai"_s);
        m->machine.http.answer(status, R"({"data":[{"id":"llama"}]})");
        QVERIFY(!test.testingConnection());
        QVERIFY(test.connectionStatus().isEmpty() && test.connectionError().isEmpty());
        QCOMPARE(m->stored(u"chatModel"_s), u"gpt-4o-mini"_s);
    }
}

void SettingsViewTest::switchingTheProviderAdoptsItsModels_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("models");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("after");
    const QString groq = u"whisper-large-v3-turbo|openai/gpt-oss-120b"_s;
    const QString openai = u"gpt-4o-mini-transcribe|gpt-4o-mini"_s;
    QTest::newRow("defaults") << "groq" << groq << "openai" << openai;
    QTest::newRow("padded default, empty") << "openai"
                                           << " gpt-4o-mini-transcribe |"
                                           << "groq" << groq;
    QTest::newRow("typed models stay") << "groq"
                                       << "mine|yours"
                                       << "openai"
                                       << "mine|yours";
    QTest::newRow("to the service") << "groq" << groq << "sayvane" << groq;
    QTest::newRow("from the service") << "sayvane"
                                      << "|mine"
                                      << "groq"
                                      << "whisper-large-v3-turbo|mine";
    QTest::newRow("unknown is the service") << "nobody"
                                            << "x|y"
                                            << "sayvane"
                                            << "x|y";
}

void SettingsViewTest::switchingTheProviderAdoptsItsModels()
{
    QFETCH(const QString, from);
    QFETCH(const QString, models);
    QFETCH(const QString, to);
    m->defaults.set(PrefsKey::provider, from);
    BoundPreferences &preferences = *m->form().preferences();
    preferences.setTranscriptionModel(models.section(u'|', 0, 0));
    preferences.setChatModel(models.section(u'|', 1));
    KeyRow &row = *m->form().key();
    row.setApiKey(u"typed"_s);
    m->defaults.set(PrefsKey::provider, to); // be it here or elsewhere
    QTEST(preferences.transcriptionModel() + u'|' + preferences.chatModel(), "after");
    QCOMPARE(row.apiKey(), from == u"nobody" ? u"typed"_s : QString());
    if (to == u"groq") {
        m->form().resetModels();
        preferences.setTranscriptionModel(u" x "_s);
        m->form().resetModels();
        QCOMPARE(preferences.transcriptionModel(), u"whisper-large-v3-turbo"_s);
    }
}

void SettingsViewTest::opensTheAdvancedGroupWithoutAKey()
{
    BoundPreferences &preferences = *m->form().preferences();
    const auto isExpandedAfter = [&](const QString &provider) {
        preferences.setAdvancedExpanded(false);
        m->choose(provider);
        return preferences.advancedExpanded();
    };
    m->machine.secrets.items = {{u"openai_api_key"_s, "sk-1"}};
    QVERIFY(isExpandedAfter(u"groq"_s));
    QVERIFY(!isExpandedAfter(u"openai"_s));
    QVERIFY(!isExpandedAfter(u"sayvane"_s));
    m->choose(u"groq"_s);
    preferences.setAdvancedExpanded(false);
    // Once per form, however often it is shown.
    m->form().setShown(false);
    m->form().setShown(true);
    QVERIFY(!preferences.advancedExpanded());
    SettingsView another(m->collaborators);
    another.setShown(true);
    QVERIFY(preferences.advancedExpanded());
}

void SettingsViewTest::choosesALanguage()
{
    LanguageChoice &choice = *m->form().language();
    QCOMPARE(choice.entries().size(), 15);
    QCOMPARE(choice.selection(), QString());
    choice.select(u"gu"_s);
    QCOMPARE(m->stored(u"language"_s), u"gu"_s);
    choice.select(u"other"_s);
    QCOMPARE(m->stored(u"language"_s), u"gu"_s);
    QCOMPARE(choice.selection(), u"other"_s);
    choice.setCode(u" NE "_s);
    QCOMPARE(m->stored(u"language"_s), u"ne"_s);
    choice.select(u"en"_s);
    QVERIFY(!choice.showsOther() && choice.selection() == u"en");
    m->defaults.set(PrefsKey::language, u"xx"_s);
    QCOMPARE(choice.selection(), u"other"_s);
    m->defaults.set(PrefsKey::language, u" EN "_s);
    QCOMPARE(choice.selection(), u"en"_s);
}

void SettingsViewTest::takesAServiceAddress_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("inUse");
    QTest::addColumn<bool>("refused");
    QTest::newRow("normalised") << " https://B.test// "
                                << "https://B.test" << false;
    QTest::newRow("without encryption") << "http://b.test"
                                        << "https://a.test" << true;
    QTest::newRow("with a query") << "https://b.test?q"
                                  << "https://a.test" << true;
    QTest::newRow("no host") << "https://"
                             << "https://a.test" << true;
    QTest::newRow("empty is the default") << " "
                                          << "https://service.test" << false;
}

void SettingsViewTest::takesAServiceAddress()
{
    QFETCH(const QString, typed);
    QFETCH(const QString, inUse);
    QFETCH(const bool, refused);
    m->defaults.set(PrefsKey::accountBaseURL, u"https://a.test"_s);
    ServiceAddress &row = *m->form().service();
    QVERIFY(!row.canApply());
    row.setServiceURLDraft(typed);
    QVERIFY(row.canApply());
    row.applyServiceURL();
    QCOMPARE(m->prefs.accountBaseURL(), inUse);
    QCOMPARE(row.serviceURLDraft(), inUse);
    QCOMPARE(row.serviceURLError(),
             refused ? u"That is not an https address. Use one like https://service.test."_s : QString());
    row.setServiceURLDraft(u"h"_s);
    QVERIFY(row.serviceURLError().isEmpty());
    m->defaults.set(PrefsKey::accountBaseURL, u"https://c.test"_s);
    QCOMPARE(row.serviceURLDraft(), u"h"_s); // what is being typed is not taken away
    row.resetServiceURL();
    m->defaults.set(PrefsKey::accountBaseURL, u"https://d.test"_s);
    QCOMPARE(row.serviceURLDraft(), u"https://d.test"_s);
}

void SettingsViewTest::followsWhatChangesElsewhere()
{
    m->machine.trust.trusted = false;
    m->choose(u"groq"_s);
    SettingsView other(m->collaborators);
    PermissionRows &rows = *m->form().permissions();
    QVERIFY(!rows.axTrusted() && rows.micGranted());
    QSignalSpy changes(other.preferences(), &BoundPreferences::changed);
    m->form().preferences()->setSoundsEnabled(false);
    QVERIFY(!changes.isEmpty() && !other.preferences()->soundsEnabled());
    m->machine.trust.trusted = true;
    m->machine.microphone.authorized = Microphone::Authorization::denied;
    m->machine.secrets.items.insert(u"groq_api_key"_s, "gsk_wxyz");
    QCOMPARE(m->form().key()->keySuffix(), u"wxyz"_s);
    m->machine.clock.advance(1999ms);
    QVERIFY(!rows.axTrusted());
    m->machine.clock.advance(1ms);
    QVERIFY(rows.axTrusted() && !rows.micGranted());
    m->form().setShown(false);
    m->machine.trust.trusted = false;
    m->machine.clock.advance(10s);
    QVERIFY(rows.axTrusted());
}

void SettingsViewTest::asksForTheAccountOncePerForm()
{
    m->form();
    QCOMPARE(m->machine.http.waiting(), 0); // nobody is signed in
    m->closeForm();
    m->sessions.save(u"svs_1"_s);
    m->status.adopt({.token = u"svs_1"_s, .email = u"a@b.test"_s});
    AccountArea &area = *m->form().account();
    QCOMPARE(area.leftToday(), u"Not known yet"_s);
    QCOMPARE(m->machine.http.waiting(), 2);
    m->machine.http.answer(200, R"({"email":"a@b.test","dailyMinutes":30,"remainingSeconds":720})");
    m->machine.http.answer(200, R"([{"id":"1","device":"Study","current":true}])");
    QCOMPARE(area.allowance(), u"30 minutes a day"_s);
    QCOMPARE(area.leftToday(), u"12 minutes"_s);
    QCOMPARE(m->signIn.devices().size(), 1);
    m->machine.clock.zone = QTimeZone(3600);
    QCOMPARE(area.lastUsed({}), u"Last used: not known"_s);
    QVERIFY(area.lastUsed(QDateTime({2026, 3, 1}, {23, 30}, Qt::UTC)).contains(u"00:30"_s));
    m->form().setShown(false);
    m->form().setShown(true);
    QCOMPARE(m->machine.http.waiting(), 0);
}

void SettingsViewTest::choosesAShortcut()
{
    ShortcutRows &rows = *m->form().shortcut();
    QCOMPARE(rows.shortcut(), u"Fn + Space"_s);
    QVERIFY(rows.usesFn());
    rows.change();
    m->machine.localKeys.send({LocalKeyEventType::flagsChanged, 0, KeyFlags::command});
    QCOMPARE(rows.pressed(), u"⌘"_s);
    m->machine.localKeys.send({LocalKeyEventType::keyDown, 2, KeyFlags::command | KeyFlags::shift});
    QVERIFY(!rows.capturing() && !rows.usesFn());
    QCOMPARE(rows.shortcut(), u"⇧⌘D"_s);
    rows.change();
    rows.resetToDefault();
    QVERIFY(!rows.capturing());
    QCOMPARE(m->installed, HotkeySpec());
    rows.change();
    m->form().setShown(false); // nobody would know that keys still go there
    QVERIFY(!rows.capturing());
}

QTEST_GUILESS_MAIN(SettingsViewTest)
#include "SettingsViewTest.moc"
