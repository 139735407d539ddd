#include "values/FlowError.h"

using namespace Qt::StringLiterals;

FlowError FlowError::noAPIKey(Provider provider)
{
    if (provider == Provider::sayvane)
        return {Kind::noAPIKey, u"Sign in under Settings to start dictating"_s};
    return {Kind::noAPIKey,
            u"No "_s + Providers::displayName(provider) + u" API key"_s + u". Open Settings to add one."_s};
}

FlowError FlowError::nothingHeard()
{
    return {Kind::nothingHeard, u"Nothing heard"_s};
}

FlowError FlowError::noInputDevice()
{
    return {Kind::noInputDevice, u"No microphone found"_s};
}

FlowError FlowError::recorderFailed()
{
    return {Kind::recorderFailed, u"Microphone is busy or unavailable"_s};
}

FlowError FlowError::lowDiskSpace()
{
    return {Kind::lowDiskSpace, u"Not enough disk space to record. Free up 50 MB and try again"_s};
}
