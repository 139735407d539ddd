#include "cloud/labs/LabsSession.h"

#include "base/Clock.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/labs/LabsClient.h"
#include "preferences/Prefs.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype historyLength = 5;

} // namespace

LabsSession::LabsSession(const Collaborators &with)
    : m_client(with.client),
      m_account(with.account),
      m_prefs(with.prefs),
      m_clock(with.clock),
      m_signedIn(m_account.signedIn()),
      m_accountSession(m_account.session())
{
    connect(&m_account, &AccountStatus::changed, this, &LabsSession::followAccount);
    connect(&m_prefs, &Prefs::accountBaseURLChanged, this, &LabsSession::forgetProviders);
}

LabsSession::~LabsSession()
{
    m_stop.request_stop();
    m_listing.request_stop();
    m_question.request_stop();
}

void LabsSession::followAccount()
{
    if (m_signedIn == m_account.signedIn() && m_accountSession == m_account.session())
        return;
    m_signedIn = m_account.signedIn();
    m_accountSession = m_account.session();
    m_question.request_stop();
    m_question = std::stop_source();
    m_busy = false;
    if (!m_signedIn) {
        m_prompt.clear();
        m_context.clear();
        m_answer.reset();
        m_error.clear();
        m_history.clear();
        Q_EMIT historyChanged();
    }
    forgetProviders();
}

/// What another service, or to another account, offers is another matter.
void LabsSession::forgetProviders()
{
    m_availableProviders.clear();
    if (m_didLoadProviders)
        loadProviders();
    else
        Q_EMIT changed();
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

std::optional<LabsProvider> LabsSession::chosenProvider() const
{
    return LabsProviderNames::fromRawValue(m_prefs.labsProvider());
}

LabsProvider LabsSession::selectedProvider() const
{
    const auto chosen = chosenProvider();
    if (chosen && m_availableProviders.contains(*chosen))
        return *chosen;
    return m_availableProviders.isEmpty() ? LabsProvider::claude : m_availableProviders.first();
}

LabsProvider LabsSession::answeringProvider() const
{
    return m_availableProviders.isEmpty() ? chosenProvider().value_or(LabsProvider::claude)
                                          : selectedProvider();
}

void LabsSession::loadProviders()
{
    m_listing.request_stop();
    m_listing = std::stop_source();
    m_loadingProviders = true;
    m_providersError.clear();
    Q_EMIT changed();
    fetchProviders(m_listing.get_token());
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
        m_providersError = tr("Labs is not offered on this server right now.");
    Q_EMIT changed();
}

void LabsSession::ask(LabsProvider provider)
{
    if (!canAsk())
        return;
    m_busy = true;
    m_error.clear();
    Q_EMIT changed();
    fetchAnswer(provider, m_mode, m_prompt, m_context.trimmed(), m_question.get_token());
}

void LabsSession::ask(const QString &provider)
{
    if (const auto known = LabsProviderNames::fromRawValue(provider))
        ask(*known);
}

QCoro::Task<> LabsSession::fetchAnswer(LabsProvider provider, LabsMode mode, QString prompt, QString context,
                                       std::stop_token stop)
{
    const std::stop_token gone = m_stop.get_token();
    const QString language = m_prefs.language();
    const auto answer = co_await m_client.answer(prompt, provider, mode, language, context, stop);
    if (gone.stop_requested())
        co_return;
    // A refusal that ended the session is told all the same.
    if (stop.stop_requested() && (answer || answer.error() == AccountError::cancelled()))
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
