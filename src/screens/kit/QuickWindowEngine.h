#pragma once

#include "screens/WindowEngine.h"
#include "screens/kit/Theme.h"

#include <QQmlEngine>

/// The windows as Qt Quick draws them. Qt's own variables (QT_QUICK_BACKEND, QSG_RHI_BACKEND) come before
/// what the computer's graphics suggest.
class QuickWindowEngine final : public WindowEngine
{
public:
    QuickWindowEngine(Appearance &appearance, const Graphics &graphics);
    ~QuickWindowEngine() override;

    std::unique_ptr<QWindow> makeWindow(const QString &typeName, const QVariantMap &properties) override;
    void tidyLater() override;

    Theme &theme() { return m_theme; }

private:
    Theme m_theme;
    QQmlEngine m_engine;
};
