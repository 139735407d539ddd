#include "dashboard/labs/LabsTexts.h"

#include "labs/LabsProvider.h"

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
        return {u"Ask a question and get a plain answer."_s, u"Your question"_s, {}};
    case LabsMode::reply:
        return {u"Draft a reply to a message you paste in below."_s, u"How to reply"_s,
                u"Paste the message you are replying to"_s};
    case LabsMode::rewrite:
        return {u"Rewrite text you paste in below, the way you ask."_s, u"How to rewrite it"_s,
                u"Paste the text to rewrite"_s};
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
    return (known ? LabsProviderNames::title(*known) : capitalised(provider)) + u" · "_s + model;
}
