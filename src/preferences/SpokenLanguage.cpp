#include "preferences/SpokenLanguage.h"

#include <algorithm>

using namespace Qt::StringLiterals;

const QList<SpokenLanguage> &SpokenLanguage::all()
{
    static const QList<SpokenLanguage> languages{
        {u""_s, tr("Auto-detect")},  {u"en"_s, tr("English")}, {u"gu"_s, tr("Gujarati")},
        {u"hi"_s, tr("Hindi")},      {u"pa"_s, tr("Punjabi")}, {u"ur"_s, tr("Urdu")},
        {u"mr"_s, tr("Marathi")},    {u"ta"_s, tr("Tamil")},   {u"bn"_s, tr("Bengali")},
        {u"es"_s, tr("Spanish")},    {u"fr"_s, tr("French")},  {u"de"_s, tr("German")},
        {u"pt"_s, tr("Portuguese")}, {u"ar"_s, tr("Arabic")},
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
