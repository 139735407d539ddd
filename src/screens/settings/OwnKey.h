#pragma once

#include "base/Provider.h"

#include <QString>

#include <optional>

/// What is known of the API keys that users bring themselves.
namespace OwnKey {

/// What the provider's keys begin with; empty for the hosted service, which has none.
QString prefix(Provider provider);

/// Where the provider's keys are made, or the account's page.
QString consoleAddress(Provider provider);

/// The other provider that a trimmed key looks to be for. A key of unknown form is accepted.
std::optional<Provider> wrongCredential(const QString &key, Provider provider);

} // namespace OwnKey
