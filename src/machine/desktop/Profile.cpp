#include "machine/desktop/Profile.h"

#include <QUrl>

using namespace Qt::StringLiterals;

QString Profile::systemName(const QString &profile)
{
    if (profile.isEmpty())
        return u"sayvane"_s;
    return u"sayvane-"_s + QString::fromLatin1(QUrl::toPercentEncoding(profile));
}
