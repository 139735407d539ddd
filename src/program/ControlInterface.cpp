#include "program/ControlInterface.h"

using namespace Qt::StringLiterals;

QString ControlInterface::busName(const QString &profile)
{
    if (profile.isEmpty())
        return name;
    // A bus name holds letters, digits and underscores: any other byte is written _XX, an underscore too.
    QString element = u".profile_"_s;
    for (const char byte : profile.toUtf8()) {
        const bool isPlain =
            (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        element += isPlain ? QString(QLatin1Char(byte))
                           : u"_%1"_s.arg(static_cast<unsigned char>(byte), 2, 16, QLatin1Char('0'));
    }
    return name + element;
}
