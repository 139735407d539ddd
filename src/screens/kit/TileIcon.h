#pragma once

#include <QQuickPaintedItem>
#include <QStringList>

/// A white symbol on a rounded square whose colours run from the top left to the bottom right. It says
/// nothing to a screen reader: the title beside it does.
class TileIcon : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString symbol MEMBER m_symbol NOTIFY changed)
    /// As "#rrggbb".
    Q_PROPERTY(QStringList colours MEMBER m_colours NOTIFY changed)
    /// Its width and height, in points.
    Q_PROPERTY(int size READ size WRITE setSize NOTIFY changed)

public:
    explicit TileIcon(QQuickItem *parent = nullptr);

    int size() const { return m_size; }
    void setSize(int size);
    void paint(QPainter *painter) override;

Q_SIGNALS:
    void changed();

private:
    QString m_symbol;
    QStringList m_colours;
    int m_size = 28;
};
