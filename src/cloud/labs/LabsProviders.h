#pragma once

#include "cloud/labs/LabsProvider.h"

#include <QByteArray>
#include <QList>

#include <optional>

/// Which assistants the service offers now.
struct LabsProviders
{
    bool claude = false;
    bool chatgpt = false;

    bool operator==(const LabsProviders &) const = default;

    /// Those offered, in the order of lists.
    QList<LabsProvider> offered() const;

    /// None unless the answer speaks of both.
    static std::optional<LabsProviders> decode(const QByteArray &json);
};
