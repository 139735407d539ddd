#include "dashboard/labs/LabsView.h"
#include "dashboard/window/SettingsWindow.h"
#include "capture/TextInserter.h"
#include "labs/LabsClient.h"
#include "settings/screen/SettingsForms.h"
#include "settings/screen/SettingsFixture.h"

#include <QDir>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

struct Stage : SettingsFixture
{
    Stage() { machine.workspace.opened.clear(); }
    SettingsForms forms{collaborators};
    SettingsWindow settings{machine.appearance, forms};
    LabsClient labsClient{client, credentials, machine.http, machine.clock};
    LabsSession session{labsClient, prefs, machine.clock};
    LabsAnswerMode answerMode{prefs, machine.clock};
    TextInserter inserter{machine.pasteboard, machine.keyPoster, machine.trust, prefs, machine.clock};
    FlowState flow = FlowState::idle;
    LabsView labs{{session, answerMode, defaults, machine.pasteboard, inserter,
                   {[this] { return flow; }, [](auto) {}, [] {}}, [] {}}};

    void signInAs(const QString &email)
    {
        sessions.save(u"svs_1"_s);
        status.adopt({.token = u"svs_1"_s, .email = email});
    }
    void typeCode()
    {
        signIn.setEmail(u"ada@example.com"_s);
        signIn.sendCode();
        machine.http.answer(200, R"({"expiresInSeconds":600})");
    }
};

struct Scene
{
    QString name;
    std::function<void(Stage &)> before = [](Stage &) {};
    std::function<void(Stage &, QQuickWindow &)> after = [](Stage &, QQuickWindow &) {};
    QSize size = QSize(640, 720);
    bool labs = false;
    double scroll = 0; // how far down, 0 to 1
};

QQuickItem *flickable(QQuickItem *root)
{
    if (root->inherits("QQuickFlickable") && root->property("widest").isValid())
        return root;
    for (QQuickItem *child : root->childItems())
        if (QQuickItem *found = flickable(child))
            return found;
    return nullptr;
}

QList<Scene> scenes()
{
    const auto signedIn = [](Stage &s) { s.signInAs(u"ada@example.com"_s); };
    const auto devices = [](Stage &s, QQuickWindow &) {
        s.machine.http.answer(200, R"({"email":"ada@example.com","plan":"pro","status":"active","dailyMinutes":30,"remainingSeconds":740})");
        s.machine.http.answer(200, R"([{"id":"1","device":"Study","current":true,"lastUsedAt":"2026-03-01T09:10:00Z"},{"id":"2","device":"Ada's laptop","lastUsedAt":"2026-02-27T18:20:00Z"},{"id":"3","device":"A computer with a name that somebody must have thought about for a very long time indeed"}])");
    };
    const auto groq = [](Stage &s) { s.defaults.set(PrefsKey::provider, u"groq"_s); };
    const auto groqKey = [](Stage &s) {
        s.machine.secrets.items.insert(u"groq_api_key"_s, "gsk_abcdefgh");
        s.defaults.set(PrefsKey::provider, u"groq"_s);
        s.defaults.set(PrefsKey::transcriptionModel, u"whisper-large-v3-turbo"_s);
        s.defaults.set(PrefsKey::chatModel, u"gone"_s);
        s.defaults.set(PrefsKey::advancedExpanded, true);
    };
    const auto offered = [](Stage &s) {
        s.signInAs(u"ada@example.com"_s);
        s.session.setDidLoadProviders(true);
        s.session.loadProviders();
        s.machine.http.answer(200, R"({"claude":true,"chatgpt":true})");
    };
    const auto answered = [offered](Stage &s) {
        offered(s);
        const QList<std::pair<QString, QByteArray>> exchanges{{u"How long do eggs keep?"_s, R"({"text":"In the fridge, about four to five weeks from the day they were laid.","provider":"claude","model":"claude-sonnet"})"},
                                       {u"What is a good word for a person who repairs clocks?"_s, R"({"text":"A horologist, or plainly a clockmaker. Horologist covers the study and the craft; clockmaker is what most people would say.\n\nIf you mean only watches, say watchmaker.","provider":"chatgpt","model":"gpt-4o"})"}};
        for (const auto &[prompt, answer] : exchanges) {
            s.session.setPrompt(prompt);
            s.session.ask(s.labs.selectedProvider());
            s.machine.http.answer(200, answer);
        }
    };
    return {
        {u"settings-signed-out"_s},
        {u"settings-email-refused"_s, [](Stage &s) { s.signIn.setEmail(u"ada"_s); s.signIn.sendCode(); }},
        {u"settings-sending"_s, [](Stage &s) { s.signIn.setEmail(u"ada@example.com"_s); s.signIn.sendCode(); }},
        {u"settings-code"_s, [](Stage &s) { s.typeCode(); s.signIn.enter(u"123"_s); }},
        {u"settings-code-wrong"_s, [](Stage &s) { s.typeCode(); s.signIn.enter(u"123456"_s); s.machine.http.answer(400, R"({"error":{"code":"invalid_code"}})"); s.machine.clock.advance(std::chrono::seconds(31)); }},
        {u"settings-rate-limited"_s, [](Stage &s) { s.signIn.setEmail(u"ada@example.com"_s); s.signIn.sendCode(); s.machine.http.answer(HttpResponse{429, {{"Retry-After", "45"}}, R"({"error":{"code":"rate_limited"}})"}); }},
        {u"settings-keyring"_s, [](Stage &s) { s.typeCode(); s.machine.secrets.addStatus = SecretStatus::interactionNotAllowed; s.signIn.enter(u"123456"_s); s.machine.http.answer(200, R"({"token":"svs_1","user":{"email":"ada@example.com"}})"); }},
        {u"settings-signed-in"_s, signedIn, devices},
        {u"settings-no-devices"_s, signedIn, [](Stage &s, QQuickWindow &) { s.machine.http.answer(500, {}); s.machine.http.answer(500, {}); }},
        {u"settings-hosted"_s, [](Stage &s) { s.defaults.set(PrefsKey::advancedExpanded, true); }},
        {u"settings-groq"_s, groq, [](Stage &, QQuickWindow &) {}, QSize(640, 1000)},
        {u"settings-groq-saved"_s, groqKey, [](Stage &, QQuickWindow &) {}, QSize(640, 1000)},
        {u"settings-openai-min"_s, [](Stage &s) { s.defaults.set(PrefsKey::provider, u"openai"_s); }, [](Stage &, QQuickWindow &) {}, QSize(520, 400), false, 0.35},
        {u"settings-large"_s, signedIn, devices, QSize(1280, 1024)},
        {u"settings-middle"_s, [](Stage &) {}, [](Stage &, QQuickWindow &) {}, QSize(640, 720), false, 0.5},
        {u"settings-bottom"_s, [](Stage &s) { s.machine.trust.trusted = false; s.defaults.set(PrefsKey::language, u"ne"_s); }, [](Stage &, QQuickWindow &) {}, QSize(640, 720), false, 1},
        {u"settings-capture"_s, [](Stage &) {}, [](Stage &s, QQuickWindow &) { s.recorder.begin(); s.machine.localKeys.send({LocalKeyEventType::keyDown, 0, 0}); s.machine.localKeys.send({LocalKeyEventType::flagsChanged, 0, KeyFlags::command | KeyFlags::shift}); }, QSize(640, 720), false, 1},
        {u"labs-notice"_s, groq, [](Stage &, QQuickWindow &) {}, QSize(720, 640), true},
        {u"labs-loading"_s, signedIn, [](Stage &, QQuickWindow &) {}, QSize(720, 640), true},
        {u"labs-not-offered"_s, signedIn, [](Stage &s, QQuickWindow &) { s.machine.http.answer(200, R"({"claude":false,"chatgpt":false})"); }, QSize(720, 640), true},
        {u"labs-answer-mode"_s, offered, [](Stage &, QQuickWindow &) {}, QSize(720, 640), true},
        {u"labs-reply"_s, [offered](Stage &s) { offered(s); s.session.setMode(LabsMode::reply); s.session.setContext(u"Could you come on Tuesday at ten? We would start with the roof and see how far we get before lunch."_s); s.session.setPrompt(u"Yes, but an hour later"_s); }, [](Stage &, QQuickWindow &) {}, QSize(720, 760), true},
        {u"labs-rewrite-min"_s, [offered](Stage &s) { offered(s); s.session.setMode(LabsMode::rewrite); s.flow = FlowState::recording; }, [](Stage &, QQuickWindow &) {}, QSize(520, 480), true},
        {u"labs-busy"_s, [offered](Stage &s) { offered(s); s.session.setPrompt(u"Why is the sky blue?"_s); s.session.ask(LabsProvider::claude); }, [](Stage &, QQuickWindow &) {}, QSize(720, 640), true},
        {u"labs-error"_s, [offered](Stage &s) { offered(s); s.session.setPrompt(u"Why is the sky blue?"_s); s.session.ask(LabsProvider::claude); s.machine.http.answer(402, R"({"error":{"code":"quota_exceeded"}})"); }, [](Stage &, QQuickWindow &) {}, QSize(720, 640), true},
        {u"labs-answered"_s, answered, [](Stage &s, QQuickWindow &) { s.answerMode.setEnabled(true); }, QSize(760, 1000), true},
    };
}

bool picture(const Scene &scene, bool dark, const QDir &folder)
{
    Stage stage;
    stage.machine.appearance.wanted.scheme = dark ? ColorScheme::dark : ColorScheme::light;
    stage.machine.trust.trusted = true;
    scene.before(stage);
    std::unique_ptr<WindowEngine> engine;
    std::unique_ptr<QQuickWindow> own;
    QQuickWindow *window = nullptr;
    if (scene.labs) {
        engine = std::make_unique<WindowEngine>(stage.machine.appearance);
        own = engine->makeWindow(u"LabsFrame"_s, {{u"model"_s, QVariant::fromValue(&stage.labs)}});
        window = own.get();
        window->show();
    } else {
        stage.settings.show();
        window = stage.settings.window();
    }
    window->resize(scene.size);
    if (!QTest::qWaitForWindowExposed(window))
        return false;
    scene.after(stage, *window);
    QTest::qWait(500);
    if (QQuickItem *pane = flickable(window->contentItem()))
        pane->setProperty("contentY", scene.scroll * std::max(0.0, pane->property("contentHeight").toDouble() - pane->height()));
    QTest::qWait(100);
    const QString path = folder.filePath(scene.name + (dark ? u"-dark.png"_s : u".png"_s));
    std::printf("%s\n", qPrintable(path));
    return window->grabWindow().save(path);
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QStringList words = QGuiApplication::arguments().mid(1);
    const QDir folder(words.takeFirst());
    const bool dark = words.removeAll(u"dark"_s) > 0;
    for (const Scene &scene : scenes()) {
        const bool wanted = words.isEmpty() || std::ranges::any_of(words, [&](const QString &word) { return scene.name.contains(word); });
        if (wanted && !picture(scene, dark, folder))
            return 1;
    }
}
