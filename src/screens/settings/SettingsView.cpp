#include "screens/settings/SettingsView.h"

#include "base/AccessibilityTrust.h"
#include "base/Clock.h"
#include "base/Microphone.h"
#include "base/Platform.h"
#include "base/Workspace.h"
#include "preferences/Keychain.h"

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto refreshInterval = 2s;

} // namespace

SettingsView::SettingsView(const Needs &needs, QObject *parent)
    : QObject(parent),
      m_platform(needs.platform),
      m_prefs(needs.prefs),
      m_account({.sessions = needs.sessions,
                 .status = needs.accountStatus,
                 .signIn = needs.signIn,
                 .clock = needs.platform.clock,
                 .workspace = needs.platform.workspace}),
      m_key({.prefs = needs.prefs,
             .keychain = needs.keychain,
             .transcriber = needs.transcriber,
             .pasteboard = needs.platform.pasteboard,
             .workspace = needs.platform.workspace}),
      m_service(needs.prefs),
      m_language(needs.prefs),
      m_shortcut(needs.prefs, needs.platform.keyTaps, needs.recorder, needs.updateHotkey),
      m_provider(needs.prefs.provider())
{
    connect(&needs.keychain, &Keychain::changed, this, [this] {
        if (shown())
            decideOnOpen();
    });
    connect(&m_prefs, &Prefs::providerChanged, this, &SettingsView::providerChanged);
}

SettingsView::~SettingsView()
{
    setShown(false);
}

QVariantList SettingsView::providers()
{
    QVariantList all;
    for (const Provider provider : Providers::allCases)
        all.append(QVariantMap{{u"value"_s, Providers::rawValue(provider)},
                               {u"text"_s, Providers::displayName(provider)}});
    return all;
}

void SettingsView::setProviderSelection(const QString &rawValue)
{
    if (const auto provider = Providers::fromRawValue(rawValue))
        m_prefs.provider.set(*provider);
}

QString SettingsView::advancedLabel() const
{
    return usesOwnKey() ? tr("Advanced: bring your own API key")
                        : tr("Advanced: use your own API key instead");
}

QString SettingsView::transcriptionCaption() const
{
    switch (m_provider) {
    case Provider::sayvane:
        return {};
    case Provider::groq:
        return tr("whisper-large-v3-turbo: fastest and cheapest. whisper-large-v3: slightly more accurate.");
    case Provider::openai:
        return tr("gpt-4o-mini-transcribe: cheapest and fast. gpt-4o-transcribe: most accurate. whisper-1: "
                  "classic.");
    }
    Q_UNREACHABLE();
}

QString SettingsView::cleanupCaption() const
{
    switch (m_provider) {
    case Provider::sayvane:
        return {};
    case Provider::groq:
        return tr("openai/gpt-oss-120b: the default, best at telling an instruction from content. "
                  "openai/gpt-oss-20b: cheaper and a little faster. Test connection picks a valid one.");
    case Provider::openai:
        return tr("gpt-4o-mini: cheap and fast. gpt-4.1-mini: stronger. Test connection picks a valid one.");
    }
    Q_UNREACHABLE();
}

void SettingsView::setShown(bool shown)
{
    if (shown == this->shown())
        return;
    if (shown) {
        m_ticker = m_platform.clock.every(refreshInterval, [this] { refresh(); });
        refresh();
        m_key.lookForKey();
        m_account.lookForSession();
        decideOnOpen();
    } else {
        m_ticker.reset();
        if (m_shortcut.capturing())
            m_shortcut.cancel();
    }
    Q_EMIT changed();
}

void SettingsView::resetModels()
{
    m_prefs.transcriptionModel.set(Providers::defaultModel(m_provider, ModelPurpose::transcription));
    m_prefs.chatModel.set(Providers::defaultModel(m_provider, ModelPurpose::chat));
}

void SettingsView::providerChanged()
{
    const Provider before = std::exchange(m_provider, m_prefs.provider());
    if (before == m_provider)
        return;
    if (usesOwnKey()) {
        // A model that the user typed is kept.
        const auto adopt = [&](Prefs::Preference<QString> &preference, ModelPurpose purpose) {
            const QString model = preference().trimmed();
            if (model.isEmpty() || model == Providers::defaultModel(before, purpose))
                preference.set(Providers::defaultModel(m_provider, purpose));
        };
        adopt(m_prefs.transcriptionModel, ModelPurpose::transcription);
        adopt(m_prefs.chatModel, ModelPurpose::chat);
    }
    m_key.startOver();
    if (usesOwnKey() && !m_key.keyStored())
        m_prefs.advancedExpanded.set(true);
    Q_EMIT changed();
}

void SettingsView::autoExpandAdvancedIfNeeded()
{
    if (m_key.isPending() || std::exchange(m_didAutoExpandAdvanced, true))
        return;
    if (usesOwnKey() && !m_key.keyStored())
        m_prefs.advancedExpanded.set(true);
}

void SettingsView::decideOnOpen()
{
    autoExpandAdvancedIfNeeded();
    m_account.checkAccountOnOpen();
}

void SettingsView::refresh()
{
    const bool trusted = m_platform.trust.isTrusted();
    const bool granted = m_platform.microphone.authorization() == Microphone::Authorization::authorized;
    const bool isNews = trusted != m_axTrusted || granted != m_micGranted;
    m_axTrusted = trusted;
    m_micGranted = granted;
    if (isNews)
        Q_EMIT changed();
    m_shortcut.refresh();
    m_key.refreshKeyState();
}

void SettingsView::openMicrophonePane()
{
    open(SettingsPane::microphone,
         tr("This desktop has no settings page for the microphone. Look for its sound settings."));
}

void SettingsView::openAccessibilityPane()
{
    if (m_platform.trust.askAgain())
        return;
    open(SettingsPane::accessibility, tr("This desktop has no settings page for accessibility."));
}

void SettingsView::open(SettingsPane pane, const QString &notice)
{
    m_paneNotice = m_platform.workspace.open(pane) ? QString() : notice;
    Q_EMIT changed();
}
