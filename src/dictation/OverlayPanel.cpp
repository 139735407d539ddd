#include "dictation/OverlayPanel.h"

#include "base/Text.h"

void OverlayModel::present(FlowState state, const std::optional<QString> &message, OverlayTone tone)
{
    m_state = state;
    m_message = message ? std::optional(Text::excerpt(*message, longestMessage)) : std::nullopt;
    m_tone = tone;
    Q_EMIT presentationChanged();
}

void OverlayModel::push(double level)
{
    m_levels.append(level);
    if (m_levels.size() > levelCount)
        m_levels.remove(0, m_levels.size() - levelCount);
    Q_EMIT levelsChanged();
}

void OverlayModel::clearLevels()
{
    m_levels.fill(0.0, levelCount);
    Q_EMIT levelsChanged();
}

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
