#pragma once

#include <QFont>
#include <QSizeF>
#include <QString>
#include <QTextLayout>

#include <optional>

class QPainter;

/// A message laid out in lines.
class MessageText
{
public:
    /// More lines than anybody reads in passing are cut off, with an ellipsis.
    static constexpr int lineLimit = 20;

    /// Breaks lines at that width, or only where the message does.
    MessageText(const QString &message, const QFont &font, std::optional<double> width);

    QSizeF size() const { return m_size; }
    double lineHeight() const;
    void paint(QPainter &painter, const QPointF &topLeft, const QColor &colour) const;

private:
    void breakLines(double width);

    QTextLayout m_layout;
    QSizeF m_size;
};
