#include "preferences/Migrations.h"

#include "preferences/Keychain.h"
#include "preferences/Prefs.h"

#include <QPointer>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QStringList legacyOpenAIModels{u"gpt-4o-transcribe"_s, u"gpt-4o-mini-transcribe"_s, u"gpt-4o-mini"_s,
                                     u"whisper-1"_s};
const QStringList retiredChatModels{u"llama-3.1-8b-instant"_s, u"llama-3.3-70b-versatile"_s};

// A value under any of these keys marks an earlier installation.
QStringList priorInstallKeys(const Prefs &prefs)
{
    return {prefs.cleanupEnabled.key(),
            prefs.restoreClipboard.key(),
            prefs.soundsEnabled.key(),
            prefs.language.key(),
            prefs.transcriptionModel.key(),
            prefs.chatModel.key(),
            prefs.vocabularyTyped.key(),
            prefs.hotkeySpec.key(),
            prefs.showDashboardOnLaunch.key(),
            prefs.advancedExpanded.key(),
            prefs.keychainKeysMigrated.key(),
            prefs.groqChatDefaultMigratedTo120b.key(),
            prefs.languageDefaultMigratedToAuto.key()};
}

/// What is stored, without white space around it.
QString trimmed(const Prefs::Preference<QString> &preference)
{
    return preference.stored().value_or(QString()).trimmed();
}

bool isEmpty(const std::optional<QString> &value)
{
    return !value || value->isEmpty();
}

} // namespace

Migrations::Migrations(Prefs &prefs, Keychain &keychain, std::function<void()> providerSettled)
    : m_prefs(prefs),
      m_keychain(keychain),
      m_providerSettled(std::move(providerSettled))
{
}

void Migrations::run()
{
    if (retiredChatModels.contains(trimmed(m_prefs.chatModel)))
        m_prefs.chatModel.remove();
    m_hadPreferences = !m_prefs.firstStartUndecided() &&
                       std::ranges::any_of(priorInstallKeys(m_prefs), [this](const QString &key) {
                           return !m_prefs.stored(key).isUndefined();
                       });
    if (!m_hadPreferences)
        connect(&m_prefs, &Prefs::changed, this, &Migrations::markFirstStart);
    connect(&m_keychain, &Keychain::changed, this, &Migrations::goOn);
    goOn();
}

void Migrations::goOn()
{
    if (!m_settled) {
        if (!migrateToProviderSetting())
            return; // the later steps leave marks that would tell of an earlier version
        m_settled = true;
        m_prefs.firstStartUndecided.remove();
        migrateGroqChatDefault();
        migrateLanguageDefaultToAuto();
        if (m_providerSettled)
            m_providerSettled();
    }
    migrateMisfiledAPIKeys();
}

void Migrations::markFirstStart(const QString &key)
{
    if (!m_settled && priorInstallKeys(m_prefs).contains(key))
        m_prefs.firstStartUndecided.set(true);
}

bool Migrations::migrateToProviderSetting()
{
    if (m_prefs.stored(m_prefs.provider.key()).isString())
        return true;
    for (const Provider provider : Providers::apiKeyProviders) {
        if (m_keychain.read(Providers::keychainAccount(provider)).isPending())
            return false;
    }
    if (!hasPriorInstall()) {
        m_prefs.provider.set(Provider::sayvane);
        return true;
    }
    if (priorInstallProvider() == Provider::openai) {
        m_prefs.provider.set(Provider::openai);
        return true;
    }
    for (auto *preference : {&m_prefs.transcriptionModel, &m_prefs.chatModel}) {
        const QString model = trimmed(*preference);
        if (model.isEmpty() || legacyOpenAIModels.contains(model))
            preference->remove();
    }
    m_prefs.provider.set(Provider::groq);
    return true;
}

bool Migrations::hasPriorInstall() const
{
    if (m_hadPreferences)
        return true;
    return std::ranges::any_of(Providers::apiKeyProviders, [this](Provider provider) {
        const Keychain::ReadResult item = m_keychain.read(Providers::keychainAccount(provider));
        return !(item.isReliable() || item.isAbsent()) || !isEmpty(item.value);
    });
}

Provider Migrations::priorInstallProvider() const
{
    const Keychain::ReadResult groq = m_keychain.read(Providers::keychainAccount(Provider::groq));
    const Keychain::ReadResult openai = m_keychain.read(Providers::keychainAccount(Provider::openai));
    if (!groq.isReliable() || !openai.isReliable() || !isEmpty(groq.value))
        return Provider::groq;
    if (!isEmpty(openai.value) && !misfiled(openai.value, Provider::openai))
        return Provider::openai;
    return Provider::groq;
}

std::optional<QString> Migrations::misfiled(const std::optional<QString> &value, Provider provider)
{
    const QString key = value.value_or(QString()).trimmed();
    return Providers::wrongCredential(key, provider) ? std::optional(key) : std::nullopt;
}

void Migrations::migrateGroqChatDefault()
{
    if (m_prefs.groqChatDefaultMigratedTo120b())
        return;
    // Marked first, so that the step never repeats.
    m_prefs.groqChatDefaultMigratedTo120b.set(true);
    if (trimmed(m_prefs.chatModel) == "openai/gpt-oss-20b"_L1)
        m_prefs.chatModel.set(u"openai/gpt-oss-120b"_s);
}

void Migrations::migrateLanguageDefaultToAuto()
{
    if (m_prefs.languageDefaultMigratedToAuto())
        return;
    m_prefs.languageDefaultMigratedToAuto.set(true);
    if (trimmed(m_prefs.language).toLower() == "en"_L1)
        m_prefs.language.set(QString());
}

QCoro::Task<> Migrations::migrateMisfiledAPIKeys()
{
    if (m_moving || m_prefs.keychainKeysMigrated())
        co_return;
    const Keychain::ReadResult groq = m_keychain.read(Providers::keychainAccount(Provider::groq));
    const Keychain::ReadResult openai = m_keychain.read(Providers::keychainAccount(Provider::openai));
    if (!groq.isReliable() || !openai.isReliable())
        co_return; // perhaps locked; as soon as it is not, or at the next launch

    const QPointer self(this);
    m_moving = true; // once a launch: a keychain that refuses is not asked over and over
    bool done = true;
    if (const auto key = misfiled(openai.value, Provider::openai))
        done = co_await moveMisfiledKey(*key, Provider::openai, groq.value, Provider::groq);
    else if (const auto mirrored = misfiled(groq.value, Provider::groq))
        done = co_await moveMisfiledKey(*mirrored, Provider::groq, openai.value, Provider::openai);
    if (self && done)
        m_prefs.keychainKeysMigrated.set(true);
}

QCoro::Task<bool> Migrations::moveMisfiledKey(QString key, Provider from, std::optional<QString> held,
                                              Provider to)
{
    constexpr auto accessibility = Keychain::Accessibility::afterFirstUnlock;
    const QPointer keychain(&m_keychain);
    const QString heldKey = held.value_or(QString()).trimmed();
    if (!heldKey.isEmpty() && heldKey != key)
        co_return true; // two different keys: nobody can say which one is meant
    if (heldKey.isEmpty()) {
        const int32_t saved = co_await keychain->save(key, Providers::keychainAccount(to), accessibility);
        if (saved != SecretStatus::success || !keychain)
            co_return false;
    }
    const int32_t removed =
        co_await keychain->save(QString(), Providers::keychainAccount(from), accessibility);
    co_return removed == SecretStatus::success;
}
