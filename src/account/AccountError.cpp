#include "account/AccountError.h"

using namespace Qt::StringLiterals;

bool AccountError::isRateLimited() const
{
    return code == "rate_limited"_L1 || code == "upstream_rate_limited"_L1;
}

AccountError AccountError::network()
{
    return {u"network"_s, u"Could not reach Sayvane. Check the network and try again."_s, std::nullopt};
}

AccountError AccountError::invalidAddress()
{
    return {std::nullopt, u"Sayvane: invalid API address"_s, std::nullopt};
}

AccountError AccountError::badResponse(const QString &message)
{
    return {u"bad_response"_s, message, std::nullopt};
}

AccountError AccountError::unreadable()
{
    return badResponse(u"Sayvane sent something this app could not read."_s);
}

AccountError AccountError::cancelled()
{
    return {u"cancelled"_s, u"Cancelled."_s, std::nullopt};
}
