#pragma once

#include "machine/desktop/PanelShadow.h"

#include <QRasterWindow>

class PanelContent;

/// The window of a floating panel. Beside a compositor it is translucent and larger than the panel by the
/// shadow around it; else it is exactly as large.
class PanelWindow final : public QRasterWindow
{
public:
    explicit PanelWindow(PanelContent &content);

    /// Where the panel is to be, in points; the window is fitted around it.
    void place(const QRect &panel, double cornerRadius, bool isComposited);
    /// Has a part of the panel painted again.
    void updatePanel(const QRect &part);

    /// What a screen reader says of the window.
    const QString &announcement() const { return m_announcement; }
    void setAnnouncement(const QString &text) { m_announcement = text; }
    QAccessibleInterface *accessibleRoot() const override;

private:
    void paintEvent(QPaintEvent *event) override;

    PanelContent &m_content;
    PanelShadow m_shadow;
    QSize m_panelSize;
    double m_cornerRadius = 0;
    bool m_isComposited = false;
    QString m_announcement;
};
