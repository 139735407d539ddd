#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

class Appearance;
class Graphics;
class QWindow;

/// Makes the program's windows from their descriptions. It costs memory, so it is made for the first of them.
class WindowEngine
{
public:
    /// `Graphics` decides, for the first engine of the process, how windows are drawn. None where windows
    /// cannot be had any more.
    using Maker = std::function<std::unique_ptr<WindowEngine>(Appearance &, const Graphics &)>;

    virtual ~WindowEngine() = default;

    /// The window described under that name, hidden, its required properties set. A window that cannot be
    /// made is a fault of the program's own, and ends it.
    virtual std::unique_ptr<QWindow> makeWindow(const QString &typeName, const QVariantMap &properties) = 0;

    /// Lets go of what closed windows have left behind, once the program has nothing else to do.
    virtual void tidyLater() = 0;
};
