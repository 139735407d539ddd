#include "overlay/MessageText.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace {

constexpr double unlimited = 1e6;
constexpr QChar ellipsis(0x2026);

} // namespace

MessageText::MessageText(const QString &message, const QFont &font, std::optional<double> width)
    : m_layout(QString(message).replace(u'\n', QChar::LineSeparator), font)
{
    QTextOption option;
    option.setWrapMode(width ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::ManualWrap);
    m_layout.setTextOption(option);
    breakLines(width.value_or(unlimited));
    if (m_layout.lineCount() > lineLimit) {
        const QTextLine last = m_layout.lineAt(lineLimit - 1);
        const QString whole = m_layout.text();
        // The ellipsis needs room on the last line.
        QTextBoundaryFinder ends(QTextBoundaryFinder::Grapheme, whole);
        ends.setPosition(last.textStart() + last.textLength());
        for (; m_layout.lineCount() > lineLimit && ends.position() > 0; ends.toPreviousBoundary()) {
            m_layout.setText(whole.first(ends.position()).trimmed() + ellipsis);
            breakLines(width.value_or(unlimited));
        }
    }
    if (!width)
        breakLines(m_size.width()); // text from right to left begins at the right end
}

void MessageText::breakLines(double width)
{
    m_size = {};
    m_layout.beginLayout();
    for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, m_size.height()});
        m_size = {std::max(m_size.width(), line.naturalTextWidth()), m_size.height() + line.height()};
    }
    m_layout.endLayout();
}

double MessageText::lineHeight() const
{
    return QFontMetricsF(m_layout.font()).height();
}

void MessageText::paint(QPainter &painter, const QPointF &topLeft, const QColor &colour) const
{
    painter.setPen(colour);
    m_layout.draw(&painter, topLeft);
}
