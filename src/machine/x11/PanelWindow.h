#pragma once

#include "machine/desktop/PanelPicture.h"

#include <QAccessibleObject>
#include <QRasterWindow>
#include <QSize>

#include <xcb/xcb.h>

class PanelContent;
class QPainter;
class QRegion;

/// The outline of a window where nothing can be translucent: a rounded rectangle of whole pixels.
class PanelOutline
{
public:
    /// On the connection that made the window.
    PanelOutline(xcb_connection_t *connection, xcb_window_t window);

    /// Cuts the window, which has this size, to rounded corners.
    void cut(const QSize &pixels, double cornerRadius) const;
    /// Leaves the window its whole rectangle.
    void clear() const;

private:
    xcb_connection_t *m_connection;
    xcb_window_t m_window;
};

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

/// The floating panel for screen readers: one notification, whose parts (a meter, a spinner, an icon) say
/// nothing of their own.
class AccessiblePanel final : public QAccessibleObject
{
public:
    explicit AccessiblePanel(PanelWindow &window);

    /// Makes the panels of this program known; once is enough.
    static void install();
    /// Tells listening screen readers that the panel says something new.
    static void announce(PanelWindow &window);

    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    QAccessible::Role role() const override { return QAccessible::Notification; }
    QAccessible::State state() const override;
    QRect rect() const override;

private:
    PanelWindow &m_window;
};
