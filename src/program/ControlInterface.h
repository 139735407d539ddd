#pragma once

#include <QString>

/// The names under which a running Sayvane is reached on the session bus, as docs/CONTROL.md tells.
namespace ControlInterface {

inline const QString name = QStringLiteral("app.sayvane.Sayvane1");
inline const QString path = QStringLiteral("/app/sayvane/Sayvane1");

/// It could not do what it was asked; the message is one sentence for the user.
inline const QString failed = QStringLiteral("app.sayvane.Sayvane1.Error.Failed");

/// The bus name of the program that serves the profile: the interface's own for the ordinary one, else
/// one below it. Two profiles never share one.
QString busName(const QString &profile);

} // namespace ControlInterface
