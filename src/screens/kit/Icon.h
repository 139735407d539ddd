#pragma once

#include <QColor>
#include <QQuickItem>

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
