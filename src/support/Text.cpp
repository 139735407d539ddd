#include "support/Text.h"

#include <QTextBoundaryFinder>

namespace {

bool isBlank(QChar character)
{
    return character == u'\t' || character.category() == QChar::Separator_Space;
}

} // namespace

QString Text::trimmedBlanks(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isBlank(text.at(begin)))
        ++begin;
    while (end > begin && isBlank(text.at(end - 1)))
        --end;
    return text.sliced(begin, end - begin);
}

int Text::wordCount(const QString &text)
{
    int words = 0;
    bool inWord = false;
    for (const QChar character : text) {
        const bool space = character.isSpace();
        if (!space && !inWord)
            ++words;
        inWord = !space;
    }
    return words;
}

QString Text::firstCharacters(const QString &text, int count)
{
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    for (int i = 0; i < count; ++i) {
        if (boundaries.toNextBoundary() < 0)
            return text;
    }
    return text.first(boundaries.position());
}

int Text::characterCount(const QString &text)
{
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (boundaries.toNextBoundary() >= 0)
        ++count;
    return count;
}
