#include "cloud/speech/CleanupPrompt.h"

using namespace Qt::StringLiterals;

QString CleanupPrompt::with(const QString &vocabulary)
{
    const QString prompt = QString::fromUtf8(fixedText);
    if (vocabulary.isEmpty())
        return prompt;
    return prompt + u"\n\nNames and terms that may have been misheard, with their correct spelling: "_s +
           vocabulary;
}
