#pragma once

#include "values/ModelPurpose.h"
#include "values/Provider.h"

#include <QCoroTask>
#include <QString>

#include <optional>
#include <stop_token>

/// Finds a successor for a model that a provider no longer serves.
class ModelRecovery
{
public:
    virtual ~ModelRecovery() = default;

    /// The id to use instead of `current`; none when the provider's models cannot be listed or none fits.
    virtual QCoro::Task<std::optional<QString>> replacement(ModelPurpose purpose, Provider provider,
                                                            QString current, std::stop_token stop) = 0;
};
