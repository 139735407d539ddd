#pragma once

#include "base/FloatingPanel.h"

#include <QObject>

/// Says in a notification of the desktop what a floating panel would show, and takes it back when the panel
/// would go. There is one at a time.
class NotificationPanel final : public QObject, public FloatingPanel
{
    Q_OBJECT
public:
    NotificationPanel() = default;
    ~NotificationPanel() override;
    Q_DISABLE_COPY_MOVE(NotificationPanel)

    std::optional<QRect> visibleFrame() const override { return std::nullopt; }
    bool reducesMotion() const override { return true; }
    void show(const QRect &, double) override {}
    void hide() override;
    void update(const QRect &) override {}
    void announce(const QString &text) override;

private:
    void follow();
    void notify();
    void close();

    QString m_wanted;     // empty for none
    bool m_isDue = false; // something was wanted that the desktop does not know yet
    uint m_id = 0;        // the desktop's name of the notification; 0 for none
    bool m_isAsking = false;
    bool m_isMissed = false; // there was no service, and the log says so
};
