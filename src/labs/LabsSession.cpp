#include "labs/LabsSession.h"

#include "labs/LabsClient.h"
#include "platform/Clock.h"
#include "settings/Prefs.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype historyLength = 5;

} // namespace

LabsSession::LabsSession(LabsClient &client, const Prefs &prefs, Clock &clock)
    : m_client(client),
      m_prefs(prefs),
      m_clock(clock)
{
}

LabsSession::~LabsSession()
{
    m_stop.request_stop();
}

void LabsSession::setPrompt(const QString &prompt)
{
    if (m_prompt == prompt)
        return;
    m_prompt = prompt;
    Q_EMIT changed();
}

void LabsSession::setContext(const QString &context)
{
    if (m_context == context)
        return;
    m_context = context;
    Q_EMIT changed();
}

void LabsSession::setMode(LabsMode mode)
{
    if (m_mode == mode)
        return;
    m_mode = mode;
    Q_EMIT changed();
}

void LabsSession::setModeRaw(const QString &mode)
{
    setMode(LabsModes::fromRawValue(mode).value_or(m_mode));
}

bool LabsSession::canAsk() const
{
    return !m_busy && !m_availableProviders.isEmpty() && !m_prompt.trimmed().isEmpty();
}

void LabsSession::loadProviders()
{
    m_loadingProviders = true;
    m_providersError.clear();
    Q_EMIT changed();
    fetchProviders(m_stop.get_token());
}

QCoro::Task<> LabsSession::fetchProviders(std::stop_token stop)
{
    const auto providers = co_await m_client.providers(stop);
    if (stop.stop_requested())
        co_return;
    m_loadingProviders = false;
    m_availableProviders = providers ? providers->offered() : QList<LabsProvider>();
    if (!providers)
        m_providersError = providers.error().message;
    else if (m_availableProviders.isEmpty())
        m_providersError = u"Labs is not offered on this server right now."_s;
    Q_EMIT changed();
}

void LabsSession::ask(LabsProvider provider)
{
    if (!canAsk())
        return;
    m_busy = true;
    m_error.clear();
    Q_EMIT changed();
    fetchAnswer(provider, m_mode, m_prompt, m_context.trimmed(), m_stop.get_token());
}

void LabsSession::ask(const QString &provider)
{
    if (const auto known = LabsProviderNames::fromRawValue(provider))
        ask(*known);
}

QCoro::Task<> LabsSession::fetchAnswer(LabsProvider provider, LabsMode mode, QString prompt, QString context,
                                       std::stop_token stop)
{
    const QString language = m_prefs.language();
    const auto answer = co_await m_client.answer(prompt, provider, mode, language, context, stop);
    if (stop.stop_requested())
        co_return;
    m_busy = false;
    if (answer) {
        m_answer = *answer;
        m_history.prepend({QUuid::createUuid(), m_clock.now(), provider, mode, prompt, answer->text});
        if (m_history.size() > historyLength)
            m_history.resize(historyLength);
        Q_EMIT historyChanged();
    } else {
        m_error = answer.error().message;
    }
    Q_EMIT changed();
}

QStringList LabsSession::availableProvidersRaw() const
{
    QStringList raw;
    for (const LabsProvider provider : m_availableProviders)
        raw.append(LabsProviderNames::rawValue(provider));
    return raw;
}

QVariantList LabsSession::historyValues() const
{
    QVariantList values;
    for (const LabsHistoryItem &item : m_history)
        values.append(QVariant::fromValue(item));
    return values;
}
