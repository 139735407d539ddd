#pragma once

#include "base/Provider.h"

#include <QCoreApplication>
#include <QString>

/// Why a dictation failed, with the one complete sentence that the user sees.
struct FlowError
{
    enum class Kind {
        api,      ///< a speech service said no; the sentence starts with its name
        noAPIKey, ///< the provider has no credential
        nothingHeard,
        noInputDevice,
        recorderFailed,
        lowDiskSpace,
        platform, ///< the machine's own error: network, file, undecodable answer
    };

    Kind kind = Kind::api;
    QString description;

    static FlowError api(const QString &message) { return {Kind::api, message}; }
    static FlowError noAPIKey(Provider provider);
    static FlowError nothingHeard();
    static FlowError noInputDevice();
    static FlowError recorderFailed();
    static FlowError lowDiskSpace();
    static FlowError platform(const QString &message) { return {Kind::platform, message}; }

    bool operator==(const FlowError &) const = default;

    Q_DECLARE_TR_FUNCTIONS(FlowError)
};
