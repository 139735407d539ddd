#pragma once

#include "base/Clock.h"
#include "dictation/OverlayModel.h"

#include <QObject>

#include <memory>

/// The floating status panel: what it shows, and for how long.
class OverlayPanel final : public QObject
{
    Q_OBJECT
public:
    explicit OverlayPanel(Clock &clock);

    /// Shows the state at once; a pending hide no longer counts.
    void show(FlowState state, const std::optional<QString> &message, OverlayTone tone);
    void push(double level) { m_model.push(level); }
    /// Hides the panel after the delay, 0 being at once; only the latest request counts.
    void hide(Clock::Duration after);

    bool isVisible() const { return m_visible; }
    OverlayModel &model() { return m_model; }

Q_SIGNALS:
    void visibleChanged();

private:
    void setVisible(bool visible);

    Clock &m_clock;
    OverlayModel m_model;
    bool m_visible = false;
    std::unique_ptr<Timer> m_hideTimer;
};
