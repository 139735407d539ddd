#pragma once

#include <QObject>

#include <functional>

class QWindow;

/// Tells when any window of the program is about to close, while it is still visible.
class WindowCloseObserver final : public QObject
{
    Q_OBJECT
public:
    explicit WindowCloseObserver(std::function<void(QWindow *)> closing);
    ~WindowCloseObserver() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::function<void(QWindow *)> m_closing;
};
