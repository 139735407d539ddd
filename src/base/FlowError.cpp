#include "base/FlowError.h"

using namespace Qt::StringLiterals;

FlowError FlowError::noAPIKey(Provider provider)
{
    if (provider == Provider::sayvane)
        return {Kind::noAPIKey, tr("Sign in under Settings to start dictating")};
    return {Kind::noAPIKey,
            tr("No %1 API key. Open Settings to add one.").arg(Providers::displayName(provider))};
}

FlowError FlowError::nothingHeard()
{
    return {Kind::nothingHeard, tr("Nothing heard")};
}

FlowError FlowError::noInputDevice()
{
    return {Kind::noInputDevice, tr("No microphone found")};
}

FlowError FlowError::recorderFailed()
{
    return {Kind::recorderFailed, tr("Microphone is busy or unavailable")};
}

FlowError FlowError::lowDiskSpace()
{
    return {Kind::lowDiskSpace, tr("Not enough disk space to record. Free up 50 MB and try again")};
}
