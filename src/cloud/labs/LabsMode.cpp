#include "cloud/labs/LabsMode.h"

using namespace Qt::StringLiterals;

QString LabsModes::rawValue(LabsMode mode)
{
    return title(mode).toLower();
}

std::optional<LabsMode> LabsModes::fromRawValue(const QString &rawValue)
{
    for (const LabsMode mode : allCases) {
        if (LabsModes::rawValue(mode) == rawValue)
            return mode;
    }
    return std::nullopt;
}

QString LabsModes::title(LabsMode mode)
{
    switch (mode) {
    case LabsMode::answer:
        return tr("Answer");
    case LabsMode::reply:
        return tr("Reply");
    case LabsMode::rewrite:
        return tr("Rewrite");
    }
    Q_UNREACHABLE();
}
