#include "dictation/OverlayPanel.h"

OverlayPanel::OverlayPanel(Clock &clock) : m_clock(clock)
{
}

void OverlayPanel::show(FlowState state, const std::optional<QString> &message, OverlayTone tone)
{
    m_hideTimer.reset();
    m_model.present(state, message, tone);
    setVisible(true);
}

void OverlayPanel::hide(Clock::Duration after)
{
    m_hideTimer.reset();
    if (after <= Clock::Duration::zero())
        setVisible(false);
    else
        m_hideTimer = m_clock.after(after, [this] { setVisible(false); });
}

void OverlayPanel::setVisible(bool visible)
{
    if (m_visible == visible)
        return;
    m_visible = visible;
    Q_EMIT visibleChanged();
}
