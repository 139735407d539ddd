#pragma once

#include "base/Clock.h"
#include "base/FlowState.h"

#include <QList>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>

/// How a message of the overlay is meant.
enum class OverlayTone { success, warning, failure };

/// What the overlay displays.
class OverlayModel final : public QObject
{
    Q_OBJECT
public:
    /// How many levels the meter shows.
    static constexpr qsizetype levelCount = 24;
    /// The longest message, in units of UTF-16; the rest is left out before anybody lays it out or reads it
    /// aloud.
    static constexpr qsizetype longestMessage = 4000;

    FlowState state() const { return m_state; }
    const std::optional<QString> &message() const { return m_message; }
    OverlayTone tone() const { return m_tone; }
    /// From 0 to 1, the newest last.
    const QList<double> &levels() const { return m_levels; }

    void present(FlowState state, const std::optional<QString> &message, OverlayTone tone);
    /// Appends a level; only the newest stay.
    void push(double level);
    void clearLevels();

Q_SIGNALS:
    void presentationChanged();
    void levelsChanged();

private:
    FlowState m_state = FlowState::idle;
    std::optional<QString> m_message;
    OverlayTone m_tone = OverlayTone::success;
    QList<double> m_levels = QList<double>(levelCount, 0.0);
};

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
