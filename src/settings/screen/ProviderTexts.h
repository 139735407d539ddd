#pragma once

#include "values/Provider.h"

#include <QString>

/// What the form says of a provider.
namespace ProviderTexts {

/// The label of the group that holds everything about keys.
QString advancedLabel(Provider provider);

/// What the model fields may hold; empty for the hosted service.
QString transcriptionCaption(Provider provider);
QString cleanupCaption(Provider provider);

} // namespace ProviderTexts
