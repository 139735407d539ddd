#include "dashboard/window/WindowEngine.h"

#include <QQmlComponent>
#include <QQuickWindow>
#include <QtQml>

using namespace Qt::StringLiterals;

extern void qml_register_types_Sayvane();

WindowEngine::WindowEngine(Appearance &appearance) : m_theme(appearance)
{
    // The module is part of the program: naming its registration keeps the linker from dropping it.
    static const auto registration [[maybe_unused]] = &qml_register_types_Sayvane;
    m_engine.addImportPath(u"qrc:/qml"_s);
    m_engine.setProperty("theme", QVariant::fromValue(&m_theme));
}

WindowEngine::~WindowEngine() = default;

std::unique_ptr<QQuickWindow> WindowEngine::makeWindow(const QString &typeName, const QVariantMap &properties)
{
    QQmlComponent component(&m_engine, QUrl(u"qrc:/qml/Sayvane/pages/%1.qml"_s.arg(typeName)));
    std::unique_ptr<QObject> object(component.createWithInitialProperties(properties));
    if (!object || !qobject_cast<QQuickWindow *>(object.get()))
        qFatal("The window could not be made: %s", qPrintable(component.errorString()));
    return std::unique_ptr<QQuickWindow>(static_cast<QQuickWindow *>(object.release()));
}
