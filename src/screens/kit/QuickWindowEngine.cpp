#include "screens/kit/QuickWindowEngine.h"

#include "base/Graphics.h"
#include "screens/kit/AccessibleItem.h"

#include <QGuiApplication>
#include <QIcon>
#include <QOpenGLContext>
#include <QQmlComponent>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

extern void qml_register_types_Sayvane();
int qInitResources_qmlcache_sayvane_kit(); // what Q_INIT_RESOURCE calls

namespace {

/// The module is part of the program: calling into its parts keeps the linker from dropping them.
void keepModule()
{
    qml_register_types_Sayvane();
    qInitResources_qmlcache_sayvane_kit();
}

bool canUseOpenGL()
{
    QOpenGLContext context;
    return context.create();
}

void chooseDrawing(const Graphics &graphics)
{
    const bool chosenByUser =
        qEnvironmentVariableIsSet("QT_QUICK_BACKEND") || qEnvironmentVariableIsSet("QSG_RHI_BACKEND");
    if (!chosenByUser && (!graphics.hasProcessor() || !canUseOpenGL()))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

} // namespace

QuickWindowEngine::QuickWindowEngine(Appearance &appearance, const Graphics &graphics) : m_theme(appearance)
{
    [[maybe_unused]] static const bool once = (chooseDrawing(graphics), true);
    keepModule();
    AccessibleItem::install();
    m_engine.addImportPath(u"qrc:/qml"_s);
    m_engine.setProperty("theme", QVariant::fromValue(&m_theme));
}

QuickWindowEngine::~QuickWindowEngine() = default;

std::unique_ptr<QWindow> QuickWindowEngine::makeWindow(const QString &typeName, const QVariantMap &properties)
{
    QQmlComponent component(&m_engine, QUrl(u"qrc:/qml/Sayvane/%1.qml"_s.arg(typeName)));
    std::unique_ptr<QObject> object(component.isReady() ? component.createWithInitialProperties(properties)
                                                        : nullptr);
    auto *const window = qobject_cast<QQuickWindow *>(object.get());
    if (!window)
        qFatal("The window could not be made: %s", qPrintable(component.errorString()));
    // A hidden window keeps nothing of what it drew.
    window->setPersistentGraphics(false);
    window->setPersistentSceneGraph(false);
    window->setIcon(QIcon::fromTheme(QGuiApplication::desktopFileName()));
    object.release();
    return std::unique_ptr<QWindow>(window);
}

void QuickWindowEngine::tidyLater()
{
    // Objects that are on their way out go first.
    const auto tidy = [this] {
        m_engine.collectGarbage();
        m_engine.trimComponentCache();
    };
    QMetaObject::invokeMethod(&m_engine, tidy, Qt::QueuedConnection);
}
