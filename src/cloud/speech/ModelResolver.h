#pragma once

#include "base/Provider.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <optional>

/// What a successful connection test tells the user, and the models it puts in the place of those stored.
struct ConnectionResult
{
    QString status; ///< that the provider answered, and how many models it offers
    QString detail; ///< which models were changed or have no match, and which are in use now
    std::optional<QString> transcriptionModel; ///< to store; none when the stored one stays
    std::optional<QString> chatModel;          ///< to store; none when the stored one stays

    /// Judges the provider's model ids against the stored models. It changes nothing itself: whoever tested
    /// the connection stores the models (`Prefs::setModel`) and shows the texts, provided that the user has
    /// not chosen another provider meanwhile.
    static ConnectionResult applyResolvedModels(const QStringList &available, Provider provider,
                                                const QString &transcriptionModel, const QString &chatModel);

    Q_DECLARE_TR_FUNCTIONS(ConnectionResult)
};

/// Chooses a model from those that a provider offers: the user's own while it is still there, else the best
/// ranked family known to be good at the job, and of several the smallest.
namespace ModelResolver {

/// Model families for the purpose, the most wanted first; an id belongs to one when it contains the entry in
/// any letter case. Empty for the hosted service, which chooses for itself.
inline const QStringList &preferences(ModelPurpose purpose, Provider provider)
{
    return Providers::facts(provider).models(purpose);
}

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
