#include "screens/settings/SettingsView.h"

#include "base/Clock.h"
#include "base/Platform.h"
#include "preferences/Defaults.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "screens/settings/ProviderTexts.h"

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto refreshInterval = 2s;

Provider providerOf(const QString &rawValue)
{
    return Providers::fromRawValue(rawValue).value_or(Provider::sayvane);
}

} // namespace

SettingsView::SettingsView(const SettingsCollaborators &with, QObject *parent)
    : QObject(parent),
      m_clock(with.platform.clock),
      m_defaults(with.defaults),
      m_prefs(with.prefs),
      m_preferences(with.defaults),
      m_account(with),
      m_connection(with.prefs, with.transcriber),
      m_key({.prefs = with.prefs,
             .keychain = with.keychain,
             .pasteboard = with.platform.pasteboard,
             .workspace = with.platform.workspace,
             .connection = m_connection}),
      m_service(with.defaults, with.prefs),
      m_language(with.defaults),
      m_permissions(with.platform.microphone, with.platform.trust, with.platform.workspace),
      m_shortcut(with.defaults, with.recorder, with.updateHotkey),
      m_providerRaw(with.defaults.textOrEmpty(PrefsKey::provider))
{
    connect(&with.keychain, &Keychain::changed, this, [this] {
        if (shown())
            decideOnOpen();
    });
    connect(&m_defaults, &Defaults::changed, this, [this](const QString &key) {
        if (key != PrefsKey::provider)
            return;
        const QString to = m_defaults.textOrEmpty(PrefsKey::provider);
        providerChanged(std::exchange(m_providerRaw, to), to);
    });
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

QString SettingsView::providerSelection() const
{
    return Providers::rawValue(m_prefs.provider());
}

void SettingsView::setProviderSelection(const QString &rawValue)
{
    m_defaults.set(PrefsKey::provider, rawValue);
}

QString SettingsView::providerName() const
{
    return Providers::displayName(m_prefs.provider());
}

bool SettingsView::usesOwnKey() const
{
    return !Providers::keychainAccount(m_prefs.provider()).isEmpty();
}

QString SettingsView::advancedLabel() const
{
    return ProviderTexts::advancedLabel(m_prefs.provider());
}

QString SettingsView::transcriptionCaption() const
{
    return ProviderTexts::transcriptionCaption(m_prefs.provider());
}

QString SettingsView::cleanupCaption() const
{
    return ProviderTexts::cleanupCaption(m_prefs.provider());
}

void SettingsView::setShown(bool shown)
{
    if (shown == this->shown())
        return;
    if (shown) {
        m_ticker = m_clock.every(refreshInterval, [this] { refresh(); });
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
    const Provider provider = m_prefs.provider();
    m_preferences.setTranscriptionModel(Prefs::defaultModel(provider, ModelPurpose::transcription));
    m_preferences.setChatModel(Prefs::defaultModel(provider, ModelPurpose::chat));
}

void SettingsView::providerChanged(const QString &from, const QString &to)
{
    const Provider before = providerOf(from);
    const Provider now = providerOf(to);
    if (before == now)
        return;
    if (usesOwnKey()) {
        // A model that the user typed is kept.
        const auto replaced = [&](const QString &stored, ModelPurpose purpose) {
            const QString model = stored.trimmed();
            return model.isEmpty() || model == Prefs::defaultModel(before, purpose);
        };
        if (replaced(m_preferences.transcriptionModel(), ModelPurpose::transcription))
            m_preferences.setTranscriptionModel(Prefs::defaultModel(now, ModelPurpose::transcription));
        if (replaced(m_preferences.chatModel(), ModelPurpose::chat))
            m_preferences.setChatModel(Prefs::defaultModel(now, ModelPurpose::chat));
    }
    m_key.startOver();
    if (usesOwnKey() && !m_key.keyStored())
        m_preferences.setAdvancedExpanded(true);
    Q_EMIT changed();
}

void SettingsView::autoExpandAdvancedIfNeeded()
{
    if (m_key.isPending() || std::exchange(m_didAutoExpandAdvanced, true))
        return;
    if (usesOwnKey() && !m_key.storedKeyExists())
        m_preferences.setAdvancedExpanded(true);
}

void SettingsView::decideOnOpen()
{
    autoExpandAdvancedIfNeeded();
    m_account.checkAccountOnOpen();
}

void SettingsView::refresh()
{
    m_permissions.refresh();
    m_key.refreshKeyState();
}
