#pragma once

#include "base/ModelPurpose.h"
#include "base/Provider.h"

#include <QString>
#include <QStringList>

#include <optional>

/// Chooses a model from those that a provider offers: the user's own while it is still there, else the best
/// ranked family known to be good at the job, and of several the smallest.
namespace ModelResolver {

/// Model families for the purpose, the most wanted first; an id belongs to one when it contains the entry in
/// any letter case. Empty for the hosted service, which chooses for itself.
const QStringList &preferences(ModelPurpose purpose, Provider provider);

/// The id to use, as the provider spells it; none when nothing on offer suits.
std::optional<QString> resolve(ModelPurpose purpose, Provider provider, const QStringList &available,
                               const QString &current);

/// The best id of the first preference that any id matches.
std::optional<QString> firstMatch(const QStringList &ids, const QStringList &preferences);

/// The candidate that is the lower-cased preference itself; else the one with the fewest parameters, then the
/// shortest, then the first in text order. None of none.
std::optional<QString> best(const QStringList &candidates, const QString &exactly);

/// The size told by the id, in billions of parameters: the smallest whole number directly before a "b" that
/// ends a word, such as 8 for "llama-3.1-8b-instant".
std::optional<double> parameterCount(const QString &id);

} // namespace ModelResolver
