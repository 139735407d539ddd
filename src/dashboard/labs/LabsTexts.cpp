#include "dashboard/labs/LabsTexts.h"

#include "labs/LabsProvider.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

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
    switch (mode) {
    case LabsMode::answer:
        return u"Ask a question and get a plain answer."_s;
    case LabsMode::reply:
        return u"Draft a reply to a message you paste in below."_s;
    case LabsMode::rewrite:
        return u"Rewrite text you paste in below, the way you ask."_s;
    }
    Q_UNREACHABLE();
}

QString LabsTexts::promptLabel(LabsMode mode)
{
    switch (mode) {
    case LabsMode::answer:
        return u"Your question"_s;
    case LabsMode::reply:
        return u"How to reply"_s;
    case LabsMode::rewrite:
        return u"How to rewrite it"_s;
    }
    Q_UNREACHABLE();
}

QString LabsTexts::contextLabel(LabsMode mode)
{
    switch (mode) {
    case LabsMode::answer:
        return {};
    case LabsMode::reply:
        return u"Paste the message you are replying to"_s;
    case LabsMode::rewrite:
        return u"Paste the text to rewrite"_s;
    }
    Q_UNREACHABLE();
}

QString LabsTexts::heading(const QString &provider, const QString &model)
{
    const auto known = LabsProviderNames::fromRawValue(provider);
    return (known ? LabsProviderNames::title(*known) : capitalised(provider)) + u" · "_s + model;
}
