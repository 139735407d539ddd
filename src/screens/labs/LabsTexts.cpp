#include "screens/labs/LabsTexts.h"

#include "base/Text.h"
#include "cloud/labs/LabsProvider.h"

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
