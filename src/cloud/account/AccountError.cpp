#include "cloud/account/AccountError.h"

#include "base/HttpTransport.h"

using namespace Qt::StringLiterals;

bool AccountError::isRateLimited() const
{
    return code == "rate_limited"_L1 || code == "upstream_rate_limited"_L1;
}

AccountError AccountError::network(const TransportError &why)
{
    if (why.kind == TransportError::Kind::tooLarge)
        return unreadable();
    return {u"network"_s, tr("Could not reach Sayvane. Check the network and try again."), std::nullopt};
}

AccountError AccountError::invalidAddress()
{
    return {std::nullopt, tr("Sayvane: invalid API address"), std::nullopt};
}

AccountError AccountError::badResponse(const QString &message)
{
    return {u"bad_response"_s, message, std::nullopt};
}

AccountError AccountError::unreadable()
{
    return badResponse(tr("Sayvane sent something this app could not read."));
}

AccountError AccountError::cancelled()
{
    return {u"cancelled"_s, u"Cancelled."_s, std::nullopt};
}
