#include "overlay/OverlayDisplay.h"

#include "base/FloatingPanel.h"
#include "dictation/OverlayPanel.h"
#include "overlay/OverlayLayout.h"

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr Clock::Duration frame = 16ms; // sixty times a second

} // namespace

void LevelMotion::moveTo(const QList<double> &target, Clock::Duration now)
{
    m_from = levels(now);
    m_from.resize(target.size());
    m_to = target;
    m_start = now;
}

void LevelMotion::jumpTo(const QList<double> &target)
{
    m_from = target;
    m_to = target;
}

QList<double> LevelMotion::levels(Clock::Duration now) const
{
    if (!isMoving(now))
        return m_to;
    const double left =
        1 - static_cast<double>((now - m_start).count()) / static_cast<double>(duration.count());
    QList<double> levels = m_to;
    for (qsizetype i = 0; i < levels.size(); ++i)
        levels[i] += (m_from[i] - m_to[i]) * left * left;
    return levels;
}

OverlayDisplay::OverlayDisplay(OverlayPanel &overlay, FloatingPanels &panels, Clock &clock)
    : m_overlay(overlay),
      m_panels(panels),
      m_clock(clock),
      m_view(overlay.model()),
      m_size(OverlayLayout::panelSize)
{
    connect(&overlay.model(), &OverlayModel::presentationChanged, this, &OverlayDisplay::changed);
    connect(&overlay, &OverlayPanel::visibleChanged, this, &OverlayDisplay::changed);
    connect(&overlay.model(), &OverlayModel::levelsChanged, this, &OverlayDisplay::follow);
}

OverlayDisplay::~OverlayDisplay() = default;

void OverlayDisplay::prepare()
{
    if (!m_panel)
        m_panel = m_panels.create(*this);
}

// What is to be seen holds up nothing that is to be done: an upload begins, and then its spinner is painted.
void OverlayDisplay::changed()
{
    if (std::exchange(m_isDue, true))
        return;
    const auto refresh = [this] {
        m_isDue = false;
        if (m_overlay.isVisible())
            show();
        else
            hide();
    };
    QMetaObject::invokeMethod(this, refresh, Qt::QueuedConnection);
}

void OverlayDisplay::show()
{
    prepare();
    if (!m_panel)
        return;
    const FlowState state = m_overlay.model().state();
    m_reducesMotion = m_panel->reducesMotion();
    m_levels.jumpTo(m_overlay.model().levels());
    m_spinningSince = m_clock.monotonic();
    const bool spins = state == FlowState::processing && !m_reducesMotion;
    m_frames = spins ? m_clock.every(frame, [this] { advance(); }) : nullptr;
    place();
    m_panel->announce(spoken());
}

void OverlayDisplay::hide()
{
    m_frames.reset();
    if (m_panel)
        m_panel->hide();
}

void OverlayDisplay::place()
{
    const OverlayModel &model = m_overlay.model();
    const std::optional<QRect> visibleFrame = m_panel->visibleFrame();
    const auto fittingSize = [&model](std::optional<double> width) {
        return OverlayView(model, width).fittingSize();
    };
    const OverlayLayout::Fit fit =
        OverlayLayout::resize(model.state(), model.message().has_value(),
                              OverlayLayout::maximumMessageWidth(visibleFrame), fittingSize);
    m_view = OverlayView(model, fit.messageWidth);
    m_size = fit.size;
    m_panel->show(OverlayLayout::place(fit.size, visibleFrame.value_or(QRect())),
                  OverlayLayout::cornerRadius(fit.size));
}

void OverlayDisplay::follow()
{
    if (!m_panel || !m_overlay.isVisible() || m_overlay.model().state() != FlowState::recording)
        return;
    const Clock::Duration now = m_clock.monotonic();
    if (m_reducesMotion)
        m_levels.jumpTo(m_overlay.model().levels());
    else
        m_levels.moveTo(m_overlay.model().levels(), now);
    if (m_reducesMotion)
        m_panel->update(m_view.movingPart());
    else if (m_levels.isMoving(now) && !m_frames)
        m_frames = m_clock.every(frame, [this] { advance(); });
}

void OverlayDisplay::advance()
{
    m_panel->update(m_view.movingPart());
    // The last picture of a change is the one that stays.
    if (m_overlay.model().state() == FlowState::recording && !m_levels.isMoving(m_clock.monotonic()))
        m_frames.reset();
}

void OverlayDisplay::paint(QPainter &painter)
{
    const Clock::Duration now = m_clock.monotonic();
    m_view.paint(
        painter, m_size,
        {.levels = m_levels.levels(now), .spinning = !m_reducesMotion, .spun = now - m_spinningSince});
}

QString OverlayDisplay::spoken() const
{
    const OverlayModel &model = m_overlay.model();
    if (model.state() == FlowState::recording)
        return tr("Listening");
    if (model.state() == FlowState::processing)
        return tr("Transcribing");
    return model.message().value_or(tr("Done"));
}
