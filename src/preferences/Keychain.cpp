#include "preferences/Keychain.h"

#include "base/Provider.h"

#include <QLoggingCategory>
#include <QPointer>
#include <QStringDecoder>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.keychain", QtInfoMsg)

const QString service = u"com.sayvane.app"_s;

std::optional<QString> decodedUtf8(const QByteArray &bytes)
{
    QStringDecoder decode(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decode(bytes);
    if (decode.hasError())
        return std::nullopt;
    return text;
}

} // namespace

Keychain::Keychain(SecretStore &store)
    : m_store(store),
      m_entries{{Providers::keychainAccount(Provider::groq), {}},
                {Providers::keychainAccount(Provider::openai), {}},
                {sessionAccount, {}}},
      m_listener(std::make_shared<const std::function<void()>>([this] { refresh(); }))
{
    m_store.follow(m_listener);
    refresh();
}

Keychain::~Keychain()
{
    m_listener.reset();
    m_stop.request_stop();
}

Keychain::ReadResult Keychain::read(const QString &account) const
{
    return m_entries.value(account).known;
}

QCoro::Task<> Keychain::refresh()
{
    const std::stop_token stop = m_stop.get_token();
    std::vector<QCoro::Task<ReadResult>> looks; // none waits for another
    for (const QString &account : m_entries.keys())
        looks.push_back(look(account, SecretStore::Asking::silently, stop));
    for (const QCoro::Task<ReadResult> &each : looks)
        co_await each;
}

QCoro::Task<Keychain::ReadResult> Keychain::fetch(QString account, std::stop_token stop)
{
    const ReadResult known = read(account);
    if (!known.value.value_or(QString()).isEmpty())
        co_return known;
    const ReadResult found = co_await look(account, SecretStore::Asking::allowed, stop);
    co_return found;
}

QCoro::Task<Keychain::ReadResult> Keychain::look(QString account, SecretStore::Asking asking,
                                                 std::stop_token stop)
{
    const QPointer self(this);
    const int number = ++m_entries[account].looks;
    const SecretStore::Found found = co_await m_store.find(service, account, asking, stop);
    ReadResult result{std::nullopt, found.status};
    if (found.status == SecretStatus::success && found.data)
        result.value = decodedUtf8(*found.data);
    if (!self || stop.stop_requested())
        co_return result;
    const Entry entry = m_entries.value(account);
    // One that began later may have failed already, where this one had to wait for the owner.
    if (entry.saving == 0 && (result.isReliable() ? number > entry.learned : number == entry.looks))
        learn(account, result, number);
    co_return result;
}

void Keychain::learn(const QString &account, const ReadResult &result, int number)
{
    m_entries[account].learned = number;
    ReadResult &known = m_entries[account].known;
    const bool holds = result.isReliable();
    if (!holds && result.status != known.status)
        qCWarning(log).noquote() << "Could not read" << account
                                 << "from the keyring:" << message(result.status);
    const ReadResult next{holds ? result.value : known.value, result.status};
    if (next == known)
        return;
    known = next;
    Q_EMIT changed();
}

QCoro::Task<int32_t> Keychain::save(QString value, QString account, Accessibility accessibility)
{
    const QPointer self(this);
    ++m_entries[account].saving;
    int32_t status = co_await m_store.remove(service, account);
    const bool isGone = status == SecretStatus::success || status == SecretStatus::itemNotFound;
    if (isGone)
        status = SecretStatus::success;
    if (self && isGone && !value.isEmpty()) {
        const QByteArray bytes = value.toUtf8();
        status = co_await m_store.add(service, account, bytes, accessibility);
    }
    if (!self)
        co_return SecretStatus::notAvailable;
    Entry &entry = m_entries[account];
    --entry.saving;
    const int number = ++entry.looks; // those that began before saw what was
    if (isGone && !value.isEmpty() && status == SecretStatus::success)
        learn(account, {value, SecretStatus::success}, number);
    else if (isGone)
        learn(account, {std::nullopt, SecretStatus::itemNotFound}, number);
    co_return status;
}

QString Keychain::message(int32_t status) const
{
    if (const auto known = m_store.message(status))
        return *known;
    return tr("Keychain error %1").arg(status);
}
