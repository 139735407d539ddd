#pragma once

#include "cloud/account/AccountSignIn.h"
#include "cloud/account/AccountStatus.h"
#include "screens/dashboard/DashboardNavigation.h"
#include "screens/dashboard/DashboardView.h"
#include "screens/dashboard/DictationListView.h"
#include "screens/dashboard/DictionaryView.h"
#include "screens/dashboard/InsightsView.h"
#include "screens/dashboard/StatsCard.h"
#include "screens/labs/LabsView.h"
#include "screens/settings/SettingsView.h"

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

struct LabsViewType
{
    Q_GADGET
    QML_FOREIGN(LabsView)
    QML_NAMED_ELEMENT(LabsView)
    QML_UNCREATABLE("")
};

struct LabsSessionType
{
    Q_GADGET
    QML_FOREIGN(LabsSession)
    QML_NAMED_ELEMENT(LabsSession)
    QML_UNCREATABLE("")
};

struct LabsAnswerModeType
{
    Q_GADGET
    QML_FOREIGN(LabsAnswerMode)
    QML_NAMED_ELEMENT(LabsAnswerMode)
    QML_UNCREATABLE("")
};

struct SettingsFormsType
{
    Q_GADGET
    QML_FOREIGN(SettingsForms)
    QML_NAMED_ELEMENT(SettingsForms)
    QML_UNCREATABLE("")
};

struct SettingsViewType
{
    Q_GADGET
    QML_FOREIGN(SettingsView)
    QML_NAMED_ELEMENT(SettingsView)
    QML_UNCREATABLE("")
};

struct PrefsType
{
    Q_GADGET
    QML_FOREIGN(Prefs)
    QML_NAMED_ELEMENT(Prefs)
    QML_UNCREATABLE("")
};

struct AccountAreaType
{
    Q_GADGET
    QML_FOREIGN(AccountArea)
    QML_NAMED_ELEMENT(AccountArea)
    QML_UNCREATABLE("")
};

struct AccountSignInType
{
    Q_GADGET
    QML_FOREIGN(AccountSignIn)
    QML_NAMED_ELEMENT(AccountSignIn)
    QML_UNCREATABLE("")
};

struct AccountStatusType
{
    Q_GADGET
    QML_FOREIGN(AccountStatus)
    QML_NAMED_ELEMENT(AccountStatus)
    QML_UNCREATABLE("")
};

struct KeyRowType
{
    Q_GADGET
    QML_FOREIGN(KeyRow)
    QML_NAMED_ELEMENT(KeyRow)
    QML_UNCREATABLE("")
};

struct ServiceAddressType
{
    Q_GADGET
    QML_FOREIGN(ServiceAddress)
    QML_NAMED_ELEMENT(ServiceAddress)
    QML_UNCREATABLE("")
};

struct LanguageChoiceType
{
    Q_GADGET
    QML_FOREIGN(LanguageChoice)
    QML_NAMED_ELEMENT(LanguageChoice)
    QML_UNCREATABLE("")
};

struct ShortcutRowsType
{
    Q_GADGET
    QML_FOREIGN(ShortcutRows)
    QML_NAMED_ELEMENT(ShortcutRows)
    QML_UNCREATABLE("")
};
