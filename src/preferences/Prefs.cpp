#include "preferences/Prefs.h"

#include "preferences/Defaults.h"
#include "preferences/HotkeySpec.h"
#include "preferences/Migrations.h"
#include "base/Text.h"

#include <QTimeZone>
#include <QUrl>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QDateTime referenceDate(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());

} // namespace

Prefs::Prefs(Defaults &defaults, const QString &defaultBaseURL)
    : m_defaults(defaults),
      m_defaultBaseURL(defaultBaseURL)
{
}

Prefs::~Prefs() = default;

Provider Prefs::provider() const
{
    return Providers::fromRawValue(m_defaults.textOrEmpty(PrefsKey::provider)).value_or(Provider::sayvane);
}

QString Prefs::transcriptionModel() const
{
    return model(PrefsKey::transcriptionModel, ModelPurpose::transcription);
}

QString Prefs::chatModel() const
{
    return model(PrefsKey::chatModel, ModelPurpose::chat);
}

QString Prefs::model(const QString &key, ModelPurpose purpose) const
{
    const auto text = m_defaults.text(key);
    return text ? *text : defaultModel(provider(), purpose);
}

void Prefs::setModel(const QString &model, ModelPurpose purpose)
{
    const QString trimmed = model.trimmed();
    if (!trimmed.isEmpty())
        m_defaults.set(purpose == ModelPurpose::chat ? PrefsKey::chatModel : PrefsKey::transcriptionModel,
                       trimmed);
}

QString Prefs::accountBaseURL() const
{
    return validAccountBaseURL(m_defaults.textOrEmpty(PrefsKey::accountBaseURL)).value_or(m_defaultBaseURL);
}

std::optional<QString> Prefs::validAccountBaseURL(const QString &text)
{
    QString address = text.trimmed();
    while (address.endsWith(u'/'))
        address.chop(1);
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != "https"_L1 || url.host().isEmpty() || !url.query().isEmpty() ||
        !url.fragment().isEmpty())
        return std::nullopt;
    return address;
}

QString Prefs::accountEmail() const
{
    return m_defaults.textOrEmpty(PrefsKey::accountEmail).trimmed();
}

void Prefs::setAccountEmail(const QString &email)
{
    const QString trimmed = email.trimmed();
    if (trimmed.isEmpty())
        m_defaults.remove(PrefsKey::accountEmail);
    else
        m_defaults.set(PrefsKey::accountEmail, trimmed);
}

std::optional<QDateTime> Prefs::labsAnswerModeExpiresAt() const
{
    static constexpr double longest = 1e11; // seconds: beyond all years, within what a date can hold
    const double seconds = m_defaults.number(PrefsKey::labsAnswerModeExpiresAt).value_or(0);
    if (!(seconds > 0))
        return std::nullopt;
    return referenceDate.addMSecs(std::llround(std::min(seconds, longest) * 1000));
}

void Prefs::setLabsAnswerModeExpiresAt(const std::optional<QDateTime> &date)
{
    if (date)
        m_defaults.set(PrefsKey::labsAnswerModeExpiresAt,
                       static_cast<double>(referenceDate.msecsTo(*date)) / 1000);
    else
        m_defaults.remove(PrefsKey::labsAnswerModeExpiresAt);
}

QString Prefs::language() const
{
    return Text::trimmedBlanks(m_defaults.textOrEmpty(PrefsKey::language));
}

QString Prefs::vocabulary() const
{
    return m_defaults.textOrEmpty(PrefsKey::vocabulary).trimmed();
}

bool Prefs::isEnabled(const QString &key) const
{
    return m_defaults.boolean(key);
}

void Prefs::registerDefaults(Keychain &keychain)
{
    m_migrations = std::make_unique<Migrations>(m_defaults, keychain, [this] { registerDefaults(); });
    registerDefaults();
    m_migrations->run();
}

void Prefs::registerDefaults()
{
    m_defaults.registerDefaults({
        {PrefsKey::provider, Providers::rawValue(Provider::sayvane)},
        {PrefsKey::accountBaseURL, m_defaultBaseURL},
        {PrefsKey::cleanupEnabled, true},
        {PrefsKey::restoreClipboard, true},
        {PrefsKey::soundsEnabled, true},
        {PrefsKey::keepFailedRecordings, false},
        {PrefsKey::language, QString()},
        {PrefsKey::transcriptionModel, defaultModel(provider(), ModelPurpose::transcription)},
        {PrefsKey::chatModel, defaultModel(provider(), ModelPurpose::chat)},
        {PrefsKey::vocabulary, u"Sayvane, Groq, OpenAI"_s},
        {PrefsKey::hotkeySpec, HotkeySpec().jsonString()},
        {PrefsKey::showDashboardOnLaunch, false},
        {PrefsKey::advancedExpanded, false},
    });
}

QString Prefs::defaultModel(Provider provider, ModelPurpose purpose)
{
    const bool chat = purpose == ModelPurpose::chat;
    switch (provider) {
    case Provider::sayvane:
        return {};
    case Provider::groq:
        return chat ? u"openai/gpt-oss-120b"_s : u"whisper-large-v3-turbo"_s;
    case Provider::openai:
        return chat ? u"gpt-4o-mini"_s : u"gpt-4o-mini-transcribe"_s;
    }
    Q_UNREACHABLE();
}
