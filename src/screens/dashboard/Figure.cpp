#include "screens/dashboard/Figure.h"

QVariantList Figure::list(const QList<Figure> &figures)
{
    QVariantList list;
    for (const Figure &figure : figures)
        list.append(QVariant::fromValue(figure));
    return list;
}
