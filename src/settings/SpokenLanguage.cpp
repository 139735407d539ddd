#include "settings/SpokenLanguage.h"

#include <algorithm>

using namespace Qt::StringLiterals;

const QList<SpokenLanguage> &SpokenLanguage::all()
{
    static const QList<SpokenLanguage> languages{
        {u""_s, u"Auto-detect"_s},  {u"en"_s, u"English"_s}, {u"gu"_s, u"Gujarati"_s}, {u"hi"_s, u"Hindi"_s},
        {u"pa"_s, u"Punjabi"_s},    {u"ur"_s, u"Urdu"_s},    {u"mr"_s, u"Marathi"_s},  {u"ta"_s, u"Tamil"_s},
        {u"bn"_s, u"Bengali"_s},    {u"es"_s, u"Spanish"_s}, {u"fr"_s, u"French"_s},   {u"de"_s, u"German"_s},
        {u"pt"_s, u"Portuguese"_s}, {u"ar"_s, u"Arabic"_s},
    };
    return languages;
}

QString SpokenLanguage::nameFor(const QString &code)
{
    const QString wanted = code.trimmed().toLower();
    const auto match = std::ranges::find(all(), wanted, &SpokenLanguage::code);
    return match != all().end() ? match->name : wanted.toUpper();
}

bool SpokenLanguage::isListed(const QString &code)
{
    return std::ranges::find(all(), code, &SpokenLanguage::code) != all().end();
}
