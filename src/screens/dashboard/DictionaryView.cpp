#include "screens/dashboard/DictionaryView.h"

#include "base/Text.h"
#include "preferences/Prefs.h"

#include <algorithm>

using namespace Qt::StringLiterals;

DictionaryView::DictionaryView(Prefs &prefs) : m_prefs(prefs)
{
    connect(&m_prefs, &Prefs::vocabularyChanged, this, &DictionaryView::refresh);
    refresh();
}

QStringList DictionaryView::terms() const
{
    QStringList terms;
    for (const QString &piece : m_prefs.vocabulary().split(u','))
        if (const QString term = piece.trimmed(); !term.isEmpty())
            terms.append(term);
    return terms;
}

void DictionaryView::setNewTerm(const QString &term)
{
    if (m_newTerm == term)
        return;
    m_newTerm = term;
    Q_EMIT changed();
}

void DictionaryView::add()
{
    const QString term = Text::trimmedBlanks(m_newTerm.trimmed().replace(u',', u' '));
    if (term.isEmpty())
        return;
    const QStringList known = terms();
    if (!known.contains(term, Qt::CaseInsensitive))
        store(known + QStringList{term});
    setNewTerm({});
}

void DictionaryView::remove(const QString &term)
{
    QStringList kept = terms();
    kept.removeAll(term);
    store(kept);
}

void DictionaryView::store(const QStringList &terms)
{
    m_prefs.vocabularyTyped.set(terms.join(u", "_s));
}

void DictionaryView::refresh()
{
    // What lies between the common beginning and the common end is replaced, so that the rest of the list
    // stays where it is.
    const QStringList before = m_rows.stringList();
    const QStringList after = terms();
    const auto [oldBegin, newBegin] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto [oldEnd, newEnd] = std::mismatch(before.rbegin(), std::make_reverse_iterator(oldBegin),
                                                after.rbegin(), std::make_reverse_iterator(newBegin));
    const int first = static_cast<int>(oldBegin - before.begin());
    const int gone = static_cast<int>(oldEnd.base() - oldBegin);
    const int come = static_cast<int>(newEnd.base() - newBegin);
    if (gone > 0)
        m_rows.removeRows(first, gone);
    if (come > 0)
        m_rows.insertRows(first, come);
    for (int i = 0; i < come; ++i)
        m_rows.setData(m_rows.index(first + i), newBegin[i]);
    Q_EMIT changed();
}
