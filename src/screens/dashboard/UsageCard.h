#pragma once

#include "base/Provider.h"
#include "history/UsageSummary.h"

#include <QCoreApplication>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

/// How much was used and what it is estimated to cost, this month and in all.
struct UsageCard
{
    Q_GADGET
    Q_PROPERTY(QVariantList monthFigures READ monthFigures CONSTANT)
    Q_PROPERTY(QVariantList allTimeFigures READ allTimeFigures CONSTANT)
    /// What stands in the place of an estimate; empty where there is one.
    Q_PROPERTY(QString included READ included CONSTANT)
    Q_PROPERTY(QStringList footnotes READ footnotes CONSTANT)
public:
    UsageSummary month;
    UsageSummary allTime;
    Provider provider = Provider::sayvane;

    /// Such as "4.2 min", from ten minutes on "13 min".
    static QString minutes(const UsageSummary &summary);
    /// Such as "$0.01", and "under $0.01" for the least amounts.
    static QString costText(const UsageSummary &summary);

    QVariantList monthFigures() const { return figures(month); }
    QVariantList allTimeFigures() const { return figures(allTime); }
    QString included() const;
    QStringList footnotes() const;

private:
    QVariantList figures(const UsageSummary &summary) const;

    Q_DECLARE_TR_FUNCTIONS(UsageCard)
};
