#pragma once

#include "base/Provider.h"

#include <QCoreApplication>
#include <QString>

/// What the form says of a provider.
struct ProviderTexts
{
    /// The label of the group that holds everything about keys.
    static QString advancedLabel(Provider provider);

    /// What the model fields may hold; empty for the hosted service.
    static QString transcriptionCaption(Provider provider);
    static QString cleanupCaption(Provider provider);

    Q_DECLARE_TR_FUNCTIONS(ProviderTexts)
};
