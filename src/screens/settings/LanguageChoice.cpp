#include "screens/settings/LanguageChoice.h"

#include "preferences/Prefs.h"
#include "preferences/SpokenLanguage.h"

using namespace Qt::StringLiterals;

namespace {

const QString otherTag = u"other"_s;

QVariantMap entry(const QString &tag, const QString &text)
{
    return {{u"value"_s, tag}, {u"text"_s, text}};
}

} // namespace

LanguageChoice::LanguageChoice(Prefs &prefs) : m_prefs(prefs)
{
    connect(&prefs, &Prefs::languageChanged, this, &LanguageChoice::changed);
}

QVariantList LanguageChoice::entries()
{
    QVariantList all;
    for (const SpokenLanguage &language : SpokenLanguage::all())
        all.append(entry(language.code, language.name));
    all.append(entry(otherTag, tr("Other (code)")));
    return all;
}

QString LanguageChoice::selection() const
{
    return showsOther() ? otherTag : code().trimmed().toLower();
}

void LanguageChoice::select(const QString &tag)
{
    m_wantsOtherLanguage = tag == otherTag;
    if (!m_wantsOtherLanguage)
        m_prefs.language.set(tag);
    Q_EMIT changed();
}

bool LanguageChoice::showsOther() const
{
    return m_wantsOtherLanguage || !SpokenLanguage::isListed(code().trimmed().toLower());
}

QString LanguageChoice::code() const
{
    return m_prefs.language();
}

void LanguageChoice::setCode(const QString &text)
{
    m_wantsOtherLanguage = showsOther(); // the field stays while it is typed in, also when it is emptied
    m_prefs.language.set(text.trimmed().toLower());
    Q_EMIT changed(); // also when only what is typed differs from what is stored
}
