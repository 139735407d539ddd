#pragma once

#include "program/Host.h"
#include "support/FakeMachine.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <memory>

/// A whole program over a fake machine, signed in to the hosted service.
class FlowFixture
{
public:
    FlowFixture()
    {
        machine.secrets.items.insert(QStringLiteral("sayvane_session"), "svs_token");
        machine.defaults.values.insert(QStringLiteral("provider"), QStringLiteral("sayvane"));
    }

    /// The program, started when it is first needed.
    Host &host()
    {
        if (!m_host) {
            m_host = std::make_unique<Host>(machine.platform, QStringLiteral("https://service.test"));
            m_host->launch([this] { ++dashboardsShown; });
        }
        return *m_host;
    }
    FlowController &flow() { return host().flow(); }
    OverlayPanel &overlay() { return flow().overlay(); }
    OverlayModel &overlayModel() { return flow().overlay().model(); }
    void quit() { m_host.reset(); }

    /// Fn + Space.
    KeyVerdict tapShortcut() { return machine.keyTaps.tap(49, KeyFlags::fn); }
    KeyVerdict tapEscape() { return machine.keyTaps.tap(53, 0); }

    /// A recording of two seconds, sent on its way.
    void speak()
    {
        tapShortcut();
        machine.clock.advance(std::chrono::seconds(2));
        tapShortcut();
    }
    void answerText(const QString &text)
    {
        machine.http.answer(200, QJsonDocument(QJsonObject{{QStringLiteral("text"), text}}).toJson());
    }
    /// Speaks, and answers the transcription and, where it is asked for, the cleanup.
    void dictate(const QString &transcript, const QString &cleaned)
    {
        speak();
        answerText(transcript);
        if (machine.http.waiting() > 0)
            answerText(cleaned);
    }
    /// Lets the waits around the paste pass.
    void finishPaste() { machine.clock.advance(std::chrono::milliseconds(600)); }

    FakeMachine machine;
    int dashboardsShown = 0;

private:
    std::unique_ptr<Host> m_host;
};
