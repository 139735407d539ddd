#include "desktop/screens/FormScenes.h"

#include "base/KeyTap.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr QSize smallest(760, 520);
constexpr QSize tall(960, 1000);
constexpr QSize narrow(480, 1000);

void signedOut(Stage &stage)
{
    stage.machine.secrets.items.clear();
}

void prefer(Stage &stage, const QString &key, const QJsonValue &value)
{
    stage.machine.defaults.values.insert(key, value);
}

/// Asks for a code, which the service answers in this way.
void askForCode(Stage &stage, const HttpResponse &answer)
{
    signedOut(stage);
    AccountSignIn &signIn = stage.host().signIn();
    signIn.setEmail(u"ada@example.com"_s);
    stage.machine.http.willAnswer(answer);
    signIn.sendCode();
}

void awaitCode(Stage &stage)
{
    askForCode(stage, {200, {}, R"({"expiresInSeconds":600})"});
}

void wrongCode(Stage &stage)
{
    awaitCode(stage);
    stage.machine.http.willAnswer(400, R"({"error":{"code":"invalid_code"}})");
    stage.host().signIn().enter(u"123456"_s);
    stage.machine.clock.advance(31s);
}

void keyringRefuses(Stage &stage)
{
    awaitCode(stage);
    stage.machine.secrets.addStatus = SecretStatus::interactionNotAllowed;
    stage.machine.http.willAnswer(200, R"({"token":"svs_1","user":{"email":"ada@example.com"}})");
    stage.host().signIn().enter(u"123456"_s);
}

void devices(Stage &stage)
{
    stage.machine.http.willAnswer(200, R"({"plan":"pro","dailyMinutes":30,"remainingSeconds":740})");
    stage.machine.http.willAnswer(200, R"([
        {"id":"1","device":"Study","current":true,"lastUsedAt":"2026-03-01T09:10:00Z"},
        {"id":"2","device":"Ada's laptop","lastUsedAt":"2026-02-27T18:20:00Z"},
        {"id":"3","device":"A computer whose owner must have thought about its name for a very long time"}])");
}

void groqKey(Stage &stage)
{
    signedOut(stage);
    stage.machine.secrets.items.insert(u"groq_api_key"_s, "gsk_abcdefgh");
    prefer(stage, u"provider"_s, u"groq"_s);
    prefer(stage, u"chatModel"_s, u"retired-8b"_s);
    prefer(stage, u"advancedExpanded"_s, true);
    stage.machine.http.willAnswer(200, R"({"data":[{"id":"whisper-large-v3-turbo"},{"id":"qwen-32b"}]})");
}

auto provider(const QString &raw)
{
    return [raw](Stage &stage) {
        signedOut(stage);
        prefer(stage, u"provider"_s, raw);
        prefer(stage, u"advancedExpanded"_s, true);
    };
}

void offered(Stage &stage)
{
    stage.machine.http.willAnswer(200, R"({"claude":true,"chatgpt":true})");
}

void compose(Stage &stage, LabsMode mode, const QString &prompt, const QString &context)
{
    offered(stage);
    LabsSession &session = stage.host().labs();
    session.setDidLoadProviders(true);
    session.loadProviders();
    session.setMode(mode);
    session.setPrompt(prompt);
    session.setContext(context);
}

void asked(Stage &stage, int status, const QByteArray &answer)
{
    compose(stage, LabsMode::answer, u"What is a good word for a person who repairs clocks?"_s, {});
    if (status != 0)
        stage.machine.http.willAnswer(status, answer);
    stage.host().labs().ask(LabsProvider::chatgpt);
}

void answered(Stage &stage)
{
    compose(stage, LabsMode::rewrite, u"Make it shorter"_s, u"In the event that it rains, we shall stay."_s);
    stage.machine.http.willAnswer(200, R"({"text":"If it rains, we stay.","model":"claude-sonnet"})");
    stage.host().labs().ask(LabsProvider::claude);
    asked(stage, 200,
          R"({"text":"A horologist, or plainly a clockmaker.\n\nIf you mean watches alone, say )"
          R"(watchmaker.","provider":"chatgpt","model":"gpt-4o"})");
    stage.host().answerMode().setEnabled(true);
}

/// The first item below that has the property, and that value in it.
QQuickItem *find(QQuickItem *item, const char *property, const QVariant &value)
{
    if (item->isVisible() && item->property(property) == value)
        return item;
    for (QQuickItem *child : item->childItems()) {
        if (QQuickItem *found = find(child, property, value))
            return found;
    }
    return nullptr;
}

auto click(const QString &text)
{
    return [text](QQuickWindow &window) {
        QQuickItem *item = find(window.contentItem(), "text", text);
        if (!item)
            qFatal("Nothing to click: %s", qPrintable(text));
        item->forceActiveFocus(Qt::TabFocusReason); // scrolls it into view
        QTest::qWait(50);
        QTest::mouseClick(&window, Qt::LeftButton, {},
                          item->mapToScene(QPointF(item->width(), item->height()) / 2).toPoint());
    };
}

/// Puts the keyboard, and so the view, where the text is.
auto lookAt(const QString &text)
{
    return [text](QQuickWindow &window) {
        if (QQuickItem *item = find(window.contentItem(), "text", text))
            item->forceActiveFocus(Qt::TabFocusReason);
    };
}

QList<Scene> inBothSchemes(QList<Scene> scenes)
{
    const QList<Scene> light = scenes;
    for (Scene scene : light) {
        scene.name += u"-dark"_s;
        scene.dark = true;
        scenes.append(scene);
    }
    return scenes;
}

} // namespace

QList<Scene> formScenes()
{
    using enum DashboardSection::Id;
    const HttpResponse rateLimit{429, {{"Retry-After", "45"}}, R"({"error":{"code":"rate_limited"}})"};
    const QString letter = u"Could you come on Tuesday at ten? We would start with the roof and see how far we get."_s;
    return inBothSchemes({
        {u"settings-signed-out"_s, settings, signedOut},
        {u"settings-rate-limited"_s, settings, [=](Stage &stage) { askForCode(stage, rateLimit); }},
        {u"settings-code"_s, settings, awaitCode},
        {u"settings-code-wrong"_s, settings, wrongCode},
        {u"settings-keyring"_s, settings, keyringRefuses},
        {u"settings-signed-in"_s, settings, devices},
        {u"settings-sign-out"_s, settings, devices, click(u"Sign out on this computer"_s)},
        {u"settings-hosted"_s, settings, provider(u"sayvane"_s), {}, smallest},
        {u"settings-openai"_s, settings, provider(u"openai"_s), {}, tall},
        {u"settings-narrow"_s, settings, provider(u"openai"_s), {}, narrow},
        {u"settings-groq-tested"_s, settings, groqKey, click(u"Test connection"_s), tall},
        {u"settings-dictation"_s, settings, [](Stage &stage) { prefer(stage, u"language"_s, u"ne"_s); },
         lookAt(u"Open Desktop Settings"_s)},
        {u"settings-shortcut"_s, settings, {}, lookAt(u"Reset to Super + Space"_s), smallest},
        {u"settings-capture"_s, settings, {}, click(u"Change"_s)},
        {u"settings-large"_s, settings, devices, {}, QSize(2560, 1440)},
        {u"labs-notice"_s, labs, provider(u"groq"_s)},
        {u"labs-loading"_s, labs},
        {u"labs-none"_s, labs,
         [](Stage &stage) { stage.machine.http.willAnswer(200, R"({"claude":false,"chatgpt":false})"); }},
        {u"labs-answer"_s, labs, offered},
        {u"labs-reply"_s, labs,
         [=](Stage &stage) { compose(stage, LabsMode::reply, u"Yes, an hour later"_s, letter); }},
        {u"labs-rewrite"_s, labs, [=](Stage &stage) { compose(stage, LabsMode::rewrite, {}, letter); }, {}, smallest},
        {u"labs-busy"_s, labs, [](Stage &stage) { asked(stage, 0, {}); }},
        {u"labs-error"_s, labs, [](Stage &stage) { asked(stage, 402, R"({"error":{"code":"quota_exceeded"}})"); }},
        {u"labs-answered"_s, labs, answered, {}, tall},
        {u"labs-narrow"_s, labs, answered, {}, narrow},
    });
}
