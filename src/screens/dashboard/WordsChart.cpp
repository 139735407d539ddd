#include "screens/dashboard/WordsChart.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// The distance between marks: 1, 2 or 5 times a power of ten, so that about four cover the amount.
qint64 stepFor(qint64 amount)
{
    const double rough = std::max(static_cast<double>(amount) / 4, 1.0);
    const double power = std::pow(10, std::floor(std::log10(rough)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= rough)
            return std::llround(factor * power);
    return std::llround(10 * power);
}

template <typename Gadget>
QVariantList listOf(const QList<Gadget> &gadgets)
{
    QVariantList list;
    for (const Gadget &gadget : gadgets)
        list.append(QVariant::fromValue(gadget));
    return list;
}

} // namespace

WordsChart WordsChart::of(const QList<DayWords> &days)
{
    constexpr qint64 leastAxis = 10; // an axis is drawn over empty days too
    constexpr int daysPerMark = 2;
    const QLocale locale;
    qint64 most = leastAxis;
    qint64 total = 0;
    for (const DayWords &day : days) {
        most = std::max(most, day.words);
        total += day.words;
    }
    const qint64 step = stepFor(most);
    const qint64 top = (most + step - 1) / step * step;

    WordsChart chart;
    for (qint64 mark = 0; mark <= top; mark += step)
        chart.marks.append({locale.toString(mark), static_cast<double>(mark) / static_cast<double>(top)});
    for (qsizetype i = 0; i < days.size(); ++i) {
        const QString label = locale.toString(days[i].date.date(), u"d MMM"_s);
        const QString words =
            days[i].words == 1 ? tr("1 word") : tr("%1 words").arg(locale.toString(days[i].words));
        chart.bars.append({label, label + u": "_s + words,
                           static_cast<double>(days[i].words) / static_cast<double>(top),
                           i % daysPerMark == 0});
    }
    chart.summary = tr("%1 words in %2 days").arg(locale.toString(total)).arg(days.size());
    return chart;
}

QVariantList WordsChart::barList() const
{
    return listOf(bars);
}

QVariantList WordsChart::markList() const
{
    return listOf(marks);
}
