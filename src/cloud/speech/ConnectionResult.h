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
