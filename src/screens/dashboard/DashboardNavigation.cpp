#include "screens/dashboard/DashboardNavigation.h"

#include <QMetaEnum>

using namespace Qt::StringLiterals;

namespace {

struct Appearance
{
    QString title;
    QString symbol;
    QStringList colours;
};

const Appearance &appearanceOf(DashboardSection::Id id)
{
    static const std::array<Appearance, DashboardSection::allCases.size()> appearances{{
        {DashboardSection::tr("Dictation"), u"mic.fill"_s, {u"#ff375f"_s, u"#ff6b8b"_s}},
        {DashboardSection::tr("Insights"), u"chart.bar.fill"_s, {u"#0a84ff"_s, u"#30d5c8"_s}},
        {DashboardSection::tr("Dictionary"), u"book.fill"_s, {u"#ff9f0a"_s, u"#ffd60a"_s}},
        {DashboardSection::tr("Labs"), u"flask.fill"_s, {u"#028f86"_s, u"#1fd9c4"_s}},
        {DashboardSection::tr("Settings"), u"gearshape.fill"_s, {u"#8e8e93"_s, u"#aeaeb2"_s}},
    }};
    return appearances.at(static_cast<size_t>(id));
}

} // namespace

QString DashboardSection::rawValue() const
{
    return QString::fromLatin1(QMetaEnum::fromType<Id>().valueToKey(m_id));
}

std::optional<DashboardSection> DashboardSection::fromRawValue(const QString &rawValue)
{
    for (const DashboardSection section : allCases)
        if (section.rawValue() == rawValue)
            return section;
    return std::nullopt;
}

QString DashboardSection::title() const
{
    return appearanceOf(m_id).title;
}

QString DashboardSection::symbol() const
{
    return appearanceOf(m_id).symbol;
}

QStringList DashboardSection::tileColours() const
{
    return appearanceOf(m_id).colours;
}

void DashboardNavigation::setSection(DashboardSection section)
{
    if (section == m_section)
        return;
    m_section = section;
    Q_EMIT changed();
}
