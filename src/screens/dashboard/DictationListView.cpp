#include "screens/dashboard/DictationListView.h"

#include "base/Clock.h"
#include "base/Pasteboard.h"
#include "history/HistoryStore.h"
#include "preferences/Prefs.h"
#include "screens/dashboard/StatsCard.h"

#include <QLocale>

using namespace Qt::StringLiterals;

DictationListView::DictationListView(HistoryStore &store, const Prefs &prefs, Clock &clock,
                                     Pasteboard &pasteboard)
    : m_store(store),
      m_prefs(prefs),
      m_clock(clock),
      m_pasteboard(pasteboard)
{
    connect(&m_store, &HistoryStore::recordsChanged, this, &DictationListView::refresh);
    connect(&m_prefs, &Prefs::hotkeySpecChanged, this, &DictationListView::changed);
    refresh();
}

QString DictationListView::greeting() const
{
    return tr("Welcome back, Orrin");
}

QVariantList DictationListView::figures() const
{
    return Figure::list(StatsCard::figures(m_store.computeStats()));
}

void DictationListView::setSearch(const QString &search)
{
    if (m_search == search)
        return;
    m_search = search;
    refresh();
}

QList<Dictation> DictationListView::filtered() const
{
    const QString wanted = m_search.trimmed();
    if (wanted.isEmpty())
        return m_store.records();
    // Lowered as the user's language does it, then compared without regard to case for what has no single
    // lower form, such as the Greek sigma.
    const QLocale locale;
    const QString lowered = locale.toLower(wanted);
    QList<Dictation> found;
    for (const Dictation &record : m_store.records())
        if (locale.toLower(record.text).contains(lowered, Qt::CaseInsensitive))
            found.append(record);
    return found;
}

void DictationListView::refresh()
{
    const QTimeZone zone = m_clock.timeZone();
    m_rows.show(DayGroup::groupsOf(filtered(), m_clock.now(), zone), zone);
    Q_EMIT changed();
}

bool DictationListView::hasRecords() const
{
    return !m_store.records().isEmpty();
}

QString DictationListView::emptyTitle() const
{
    return hasRecords() ? tr("Nothing matches that search") : tr("No dictations yet");
}

QString DictationListView::emptyHint() const
{
    if (hasRecords())
        return {};
    return tr("Press %1 anywhere to start.").arg(m_prefs.hotkeySpec().displayString());
}

void DictationListView::copy(int row)
{
    if (const Dictation *dictation = m_rows.at(row))
        m_pasteboard.setString(dictation->text);
}

void DictationListView::remove(int row)
{
    if (const Dictation *dictation = m_rows.at(row))
        m_store.remove(Dictation(*dictation)); // its row is gone before the store has finished
}

QString DictationListView::clearTitle() const
{
    return tr("Delete all %1 dictations?").arg(m_store.records().size());
}

void DictationListView::setConfirmingClear(bool confirming)
{
    if (m_confirmingClear == confirming)
        return;
    m_confirmingClear = confirming;
    Q_EMIT changed();
}

void DictationListView::clear()
{
    m_confirmingClear = false;
    m_store.clear();
}
