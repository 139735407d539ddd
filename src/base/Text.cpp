#include "base/Text.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <charconv>

using namespace Qt::StringLiterals;

namespace {

bool isBlank(QChar character)
{
    return character == u'\t' || character.category() == QChar::Separator_Space;
}

} // namespace

QString Decimal::format(double number, int decimals)
{
    // Neither Qt, which rounds halves up, nor printf, whose decimal point is the user's.
    std::array<char, 64> digits{};
    const auto end =
        std::to_chars(digits.begin(), digits.end(), number, std::chars_format::fixed, decimals).ptr;
    return QString::fromLatin1(digits.data(), end - digits.data());
}

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

QString Text::withoutControls(QString text)
{
    text.replace(u"\r\n"_s, u"\n"_s);
    text.replace(u'\r', u'\n');
    text.removeIf([](QChar character) {
        return character.category() == QChar::Other_Control && character != u'\n' && character != u'\t';
    });
    return text;
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
    // Looks no further than it must: a text may be megabytes long.
    for (qsizetype reach = 16 * (qsizetype{count} + 1);; reach *= 4) {
        const QString head = text.first(std::min(reach, text.size()));
        QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, head);
        int found = 0;
        while (found < count && boundaries.toNextBoundary() >= 0)
            ++found;
        if (head.size() == text.size())
            return found < count ? text : head.first(boundaries.position());
        if (found == count && boundaries.position() < head.size() - 1) // a whole character follows
            return head.first(boundaries.position());
    }
}

int Text::characterCount(const QString &text)
{
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (boundaries.toNextBoundary() >= 0)
        ++count;
    return count;
}

QString Text::excerpt(const QString &text, qsizetype units)
{
    if (text.size() <= units)
        return text;
    const QString head = text.first(std::min(units + 2, text.size())); // with what follows
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, head);
    boundaries.setPosition(units);
    if (!boundaries.isAtBoundary())
        boundaries.toPreviousBoundary();
    qsizetype end = boundaries.position();
    if (end <= 0) // one endless character
        end = units > 0 && text.at(units - 1).isHighSurrogate() ? units - 1 : units;
    return text.first(end) + u'…';
}

QString Text::quoted(const QString &words)
{
    static constexpr qsizetype longest = 1000;
    return excerpt(words, longest);
}
