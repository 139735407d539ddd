#include "program/FormScreens.h"

#include "base/Platform.h"
#include "program/Host.h"

#include <utility>

using namespace Qt::StringLiterals;

FormScreens::FormScreens(Host &host, Platform &platform, std::function<void()> openSettings)
    : m_settings({.platform = platform,
                  .prefs = host.prefs(),
                  .keychain = host.keychain(),
                  .sessions = host.sessions(),
                  .accountStatus = host.account(),
                  .signIn = host.signIn(),
                  .transcriber = host.transcriber(),
                  .recorder = host.hotkeyRecorder(),
                  .updateHotkey = [&host](const HotkeySpec &spec) { host.flow().updateHotkey(spec); }}),
      m_labs({.session = host.labs(),
              .answerMode = host.answerMode(),
              .prefs = host.prefs(),
              .pasteboard = platform.pasteboard,
              .inserter = host.flow().inserter(),
              .dictation = {.state = [&host] { return host.flow().state(); },
                            .captureNextTranscript =
                                [&host](auto into) { host.flow().captureNextTranscript(std::move(into)); },
                            .finishRecording = [&host] { host.flow().finishRecording(false); }},
              .openSettings = std::move(openSettings)})
{
    QObject::connect(&host.flow(), &FlowController::stateChanged, &m_labs, &LabsView::flowStateChanged);
}

QVariantMap FormScreens::models()
{
    return {{u"settings"_s, QVariant::fromValue(&m_settings)}, {u"labs"_s, QVariant::fromValue(&m_labs)}};
}
