#pragma once

#include "base/Clock.h"
#include "base/FloatingPanel.h"
#include "overlay/OverlayView.h"

#include <QList>
#include <QObject>
#include <QSize>

#include <memory>

class FloatingPanel;
class FloatingPanels;
class OverlayPanel;

/// The meter's levels on their way from what was shown to what was measured last.
class LevelMotion
{
public:
    /// How long a change takes; it slows down towards its end.
    static constexpr Clock::Duration duration = std::chrono::milliseconds(50);

    /// Starts from what is shown at that time.
    void moveTo(const QList<double> &levels, Clock::Duration now);
    void jumpTo(const QList<double> &levels);
    QList<double> levels(Clock::Duration now) const;
    bool isMoving(Clock::Duration now) const { return m_from != m_to && now < m_start + duration; }

private:
    QList<double> m_from;
    QList<double> m_to;
    Clock::Duration m_start{};
};

/// Puts the overlay on the screen: makes its window when it is first needed, gives it its size and place
/// at every show, and keeps it moving while there is something to see.
class OverlayDisplay final : public QObject, private PanelContent
{
    Q_OBJECT
public:
    OverlayDisplay(OverlayPanel &overlay, FloatingPanels &panels, Clock &clock);
    ~OverlayDisplay() override;

    /// Makes the window before it is needed; it appears sooner then.
    void prepare();

private:
    void paint(QPainter &painter) override;
    void screensChanged() override { place(); }

    void changed();
    void show();
    void hide();
    void place();
    void follow();
    void advance();
    QString spoken() const;

    OverlayPanel &m_overlay;
    FloatingPanels &m_panels;
    Clock &m_clock;
    OverlayView m_view;
    QSize m_size;
    LevelMotion m_levels;
    bool m_isDue = false; // something to show or to hide, when there is time
    bool m_reducesMotion = false;
    Clock::Duration m_spinningSince{};
    std::unique_ptr<FloatingPanel> m_panel;
    std::unique_ptr<Timer> m_frames; // while something moves
};
