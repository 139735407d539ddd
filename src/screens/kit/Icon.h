#pragma once

#include <QColor>
#include <QQuickItem>
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

/// A symbol in one colour, drawn for the exact pixels it covers. It says nothing to a screen reader: the
/// control around it does.
class Icon : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString symbol READ symbol WRITE setSymbol NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)
    /// Its width and height, in points.
    Q_PROPERTY(int size READ size WRITE setSize NOTIFY changed)

public:
    explicit Icon(QQuickItem *parent = nullptr);

    QString symbol() const { return m_symbol; }
    void setSymbol(const QString &symbol);
    QColor color() const { return m_color; }
    void setColor(const QColor &color);
    int size() const { return m_size; }
    void setSize(int size);

Q_SIGNALS:
    void changed();

protected:
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    void redraw();

    QString m_symbol;
    QColor m_color;
    int m_size = 16;
    bool m_stale = true;
};
