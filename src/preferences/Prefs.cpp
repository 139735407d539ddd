#include "preferences/Prefs.h"

#include "base/DefaultsStore.h"
#include "base/Text.h"
#include "preferences/Migrations.h"

#include <QTimeZone>
#include <QUrl>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QDateTime referenceDate(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());

std::optional<bool> truthIn(const QJsonValue &stored)
{
    return stored.isBool() ? std::optional(stored.toBool()) : std::nullopt;
}

std::optional<QString> textIn(const QJsonValue &stored)
{
    return stored.isString() ? std::optional(stored.toString()) : std::nullopt;
}

QJsonValue asItIs(const QString &value)
{
    return value;
}

std::optional<std::optional<QDateTime>> dateIn(const QJsonValue &stored)
{
    static constexpr double longest = 1e11; // seconds: beyond all years, within what a date can hold
    const double seconds = stored.toDouble();
    if (!(seconds > 0))
        return std::nullopt;
    return referenceDate.addMSecs(std::llround(std::min(seconds, longest) * 1000));
}

} // namespace

constinit const Prefs::Form<bool> Prefs::truth{.read = truthIn,
                                               .write = [](const bool &value) { return QJsonValue(value); }};

constinit const Prefs::Form<Provider> Prefs::providerName{
    .read = [](const QJsonValue &stored) { return Providers::fromRawValue(stored.toString()); },
    .write = [](const Provider &value) { return QJsonValue(Providers::rawValue(value)); }};

constinit const Prefs::Form<HotkeySpec> Prefs::shortcut{
    .read = [](const QJsonValue &stored) { return std::optional(HotkeySpec::decode(textIn(stored))); },
    .write = [](const HotkeySpec &value) { return QJsonValue(value.jsonString()); }};

constinit const Prefs::Form<std::optional<QDateTime>> Prefs::date{
    .read = dateIn, .write = [](const std::optional<QDateTime> &value) {
        return value ? QJsonValue(static_cast<double>(referenceDate.msecsTo(*value)) / 1000)
                     : QJsonValue(QJsonValue::Undefined);
    }};

constinit const Prefs::Form<QString> Prefs::text{.read = textIn, .write = asItIs};

constinit const Prefs::Form<QString> Prefs::address{
    .read = [](const QJsonValue &stored) { return validAccountBaseURL(stored.toString()); }, .write = asItIs};

constinit const Prefs::Form<QString> Prefs::email{
    .read = [](const QJsonValue &stored) { return std::optional(stored.toString().trimmed()); },
    .write =
        [](const QString &value) {
            const QString trimmed = value.trimmed();
            return trimmed.isEmpty() ? QJsonValue(QJsonValue::Undefined) : QJsonValue(trimmed);
        }};

constinit const Prefs::Form<QString> Prefs::code{
    .read = [](const QJsonValue &stored) { return std::optional(Text::trimmedBlanks(stored.toString())); },
    .write = asItIs};

Prefs::Prefs(DefaultsStore &store, const QString &defaultBaseURL)
    : m_store(store),
      m_defaultBaseURL(defaultBaseURL)
{
}

Prefs::~Prefs() = default;

QJsonValue Prefs::stored(const QString &key) const
{
    return m_store.value(key);
}

void Prefs::store(const QString &key, const QJsonValue &value, void (Prefs::*signal)())
{
    if (stored(key) == value)
        return;
    if (value.isUndefined())
        m_store.remove(key);
    else
        m_store.setValue(key, value);
    if (signal)
        Q_EMIT(this->*signal)();
    Q_EMIT changed(key);
}

void Prefs::setModel(const QString &model, ModelPurpose purpose)
{
    const QString trimmed = model.trimmed();
    if (!trimmed.isEmpty())
        (purpose == ModelPurpose::chat ? chatModel : transcriptionModel).set(trimmed);
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

void Prefs::registerDefaults(Keychain &keychain)
{
    m_launchProvider = provider();
    m_migrations = std::make_unique<Migrations>(*this, keychain, [this] { m_launchProvider = provider(); });
    m_migrations->run();
}

QString Prefs::launchModel(ModelPurpose purpose) const
{
    return Providers::defaultModel(m_launchProvider.value_or(provider()), purpose);
}
