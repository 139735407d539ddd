#pragma once

#include "dashboard/DashboardNavigation.h"
#include "dashboard/DashboardView.h"
#include "dashboard/DictationListView.h"
#include "dashboard/DictionaryView.h"
#include "dashboard/Figure.h"
#include "dashboard/InsightsView.h"

#include <qqml.h>

// The models' types as QML knows them. The models stand in rooms without QML, so they are named here; QML
// makes none of them.

struct DashboardNavigationType
{
    Q_GADGET
    QML_FOREIGN(DashboardNavigation)
    QML_NAMED_ELEMENT(DashboardNavigation)
    QML_UNCREATABLE("")
};

struct DashboardViewType
{
    Q_GADGET
    QML_FOREIGN(DashboardView)
    QML_NAMED_ELEMENT(DashboardView)
    QML_UNCREATABLE("")
};

struct DictationListViewType
{
    Q_GADGET
    QML_FOREIGN(DictationListView)
    QML_NAMED_ELEMENT(DictationListView)
    QML_UNCREATABLE("")
};

struct DictationRowsType
{
    Q_GADGET
    QML_FOREIGN(DictationRows)
    QML_ANONYMOUS
};

struct DictionaryViewType
{
    Q_GADGET
    QML_FOREIGN(DictionaryView)
    QML_NAMED_ELEMENT(DictionaryView)
    QML_UNCREATABLE("")
};

struct InsightsViewType
{
    Q_GADGET
    QML_FOREIGN(InsightsView)
    QML_NAMED_ELEMENT(InsightsView)
    QML_UNCREATABLE("")
};

struct WordsChartType
{
    Q_GADGET
    QML_FOREIGN(WordsChart)
    QML_ANONYMOUS
};

struct UsageCardType
{
    Q_GADGET
    QML_FOREIGN(UsageCard)
    QML_ANONYMOUS
};
