#include "screens/labs/LabsView.h"

#include "base/Pasteboard.h"
#include "base/Text.h"
#include "cloud/labs/LabsProvider.h"
#include "dictation/TextInserter.h"
#include "preferences/Prefs.h"

#include <QPointer>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

struct ModeTexts
{
    QString hint;
    QString prompt;
    QString context;
};

ModeTexts textsOf(LabsMode mode)
{
    switch (mode) {
    case LabsMode::answer:
        return {LabsTexts::tr("Ask a question and get a plain answer."), LabsTexts::tr("Your question"), {}};
    case LabsMode::reply:
        return {LabsTexts::tr("Draft a reply to a message you paste in below."),
                LabsTexts::tr("How to reply"), LabsTexts::tr("Paste the message you are replying to")};
    case LabsMode::rewrite:
        return {LabsTexts::tr("Rewrite text you paste in below, the way you ask."),
                LabsTexts::tr("How to rewrite it"), LabsTexts::tr("Paste the text to rewrite")};
    }
    Q_UNREACHABLE();
}

QString capitalised(const QString &words)
{
    QStringList all = words.toLower().split(u' ');
    for (QString &word : all)
        word = word.left(1).toUpper() + word.mid(1);
    return all.join(u' ');
}

constexpr int promptLimit = 8000;
constexpr int contextLimit = 4000;

QString counter(const QString &text, int limit)
{
    return u"%1/%2"_s.arg(Text::characterCount(text)).arg(limit);
}

QVariantMap option(const QString &value, const QString &text)
{
    return {{u"value"_s, value}, {u"text"_s, text}};
}

} // namespace

QString LabsTexts::hint(LabsMode mode)
{
    return textsOf(mode).hint;
}

QString LabsTexts::promptLabel(LabsMode mode)
{
    return textsOf(mode).prompt;
}

QString LabsTexts::contextLabel(LabsMode mode)
{
    return textsOf(mode).context;
}

QString LabsTexts::heading(const QString &provider, const QString &model)
{
    const auto known = LabsProviderNames::fromRawValue(provider);
    return (known ? LabsProviderNames::title(*known) : capitalised(Text::quoted(provider))) + u" · "_s +
           Text::quoted(model);
}

LabsView::LabsView(const Collaborators &with)
    : m_session(with.session),
      m_answerMode(with.answerMode),
      m_prefs(with.prefs),
      m_pasteboard(with.pasteboard),
      m_inserter(with.inserter),
      m_dictation(with.dictation),
      m_openSettings(with.openSettings)
{
    connect(&m_session, &LabsSession::changed, this, &LabsView::changed);
    connect(&m_answerMode, &LabsAnswerMode::enabledChanged, this, &LabsView::changed);
    connect(&m_prefs, &Prefs::providerChanged, this, &LabsView::changed);
    connect(&m_prefs, &Prefs::labsProviderChanged, this, &LabsView::changed);
}

LabsView::~LabsView()
{
    m_stop.request_stop();
}

bool LabsView::usable() const
{
    return m_prefs.provider() == Provider::sayvane;
}

QVariantList LabsView::providers() const
{
    QVariantList all;
    for (const LabsProvider provider : m_session.availableProviders())
        all.append(option(LabsProviderNames::rawValue(provider), LabsProviderNames::title(provider)));
    return all;
}

QVariantList LabsView::modes()
{
    QVariantList all;
    for (const LabsMode mode : LabsModes::allCases)
        all.append(option(LabsModes::rawValue(mode), LabsModes::title(mode)));
    return all;
}

void LabsView::selectProvider(const QString &rawValue)
{
    m_prefs.labsProvider.set(rawValue);
}

QString LabsView::providersNotice() const
{
    if (m_session.loadingProviders() || !m_session.availableProviders().isEmpty())
        return {};
    const QString &error = m_session.providersError();
    return error.isEmpty() ? tr("Labs is not offered on this server right now.") : error;
}

QString LabsView::modeHint() const
{
    return LabsTexts::hint(m_session.mode());
}

QString LabsView::promptLabel() const
{
    return LabsTexts::promptLabel(m_session.mode());
}

QString LabsView::promptCount() const
{
    return counter(m_session.prompt(), promptLimit);
}

QString LabsView::contextLabel() const
{
    return LabsTexts::contextLabel(m_session.mode());
}

QString LabsView::contextCount() const
{
    return counter(m_session.context(), contextLimit);
}

QString LabsView::answerHeading() const
{
    const auto &answer = m_session.answer();
    return answer ? LabsTexts::heading(answer->provider, answer->model) : QString();
}

QString LabsView::answerText() const
{
    return hasAnswer() ? m_session.answer()->text : QString();
}

QString LabsView::answerModeCaption() const
{
    return tr("While this is on, an ordinary dictation is answered by %1 and the answer is pasted instead of "
              "the "
              "transcript. Turns itself off after 30 minutes.")
        .arg(LabsProviderNames::title(m_session.answeringProvider()));
}

bool LabsView::canSwitchAnswerMode() const
{
    return m_answerMode.enabled() || !m_session.availableProviders().isEmpty();
}

void LabsView::appear()
{
    if (!usable() || m_session.didLoadProviders())
        return;
    m_session.setDidLoadProviders(true);
    m_session.loadProviders();
}

void LabsView::openSettings()
{
    m_openSettings();
}

void LabsView::dictate()
{
    if (dictating())
        return m_dictation.finishRecording();
    m_dictation.captureNextTranscript([session = QPointer(&m_session)](const QString &transcript) {
        if (session)
            session->setPrompt(transcript);
    });
}

void LabsView::ask()
{
    m_session.ask(selectedProvider());
}

void LabsView::copyAnswer()
{
    if (hasAnswer())
        m_pasteboard.setString(answerText());
}

void LabsView::pasteAnswer()
{
    if (!hasAnswer())
        return;
    copyAnswer();
    paste(answerText(), m_stop.get_token());
}

QCoro::Task<> LabsView::paste(QString text, std::stop_token stop)
{
    co_await m_inserter.insert(text, stop);
}
