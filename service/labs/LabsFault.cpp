#include "service/labs/LabsFault.h"

Refusal LabsFault::unavailable(const std::string &assistant)
{
    return {503, "labs_unavailable", "This server does not offer " + assistant + '.'};
}

Refusal LabsFault::declined(const std::string &assistant)
{
    return {422, "refused", assistant + " declined that request."};
}

Refusal LabsFault::notUnderstood(const std::string &assistant)
{
    return {502, "upstream_error", assistant + " did not answer as it should. Try again."};
}

Refusal LabsFault::named(Refusal fault, const std::string &assistant)
{
    if (fault.code == "upstream_unreachable")
        fault.message = "Could not reach " + assistant + ". Try again.";
    else if (fault.code == "upstream_timeout")
        fault.message = assistant + " took too long to answer. Try again.";
    else if (fault.code == "upstream_auth")
        fault.message = "This server's connection to " + assistant + " was rejected.";
    else if (fault.code == "upstream_rate_limited")
        fault.message = assistant + " is busy. Try again in a moment.";
    else if (fault.code == "payload_too_large")
        fault.message = assistant + " found the request too large.";
    else if (fault.code == "upstream_error")
        fault.message = assistant + " could not answer. Try again.";
    return fault;
}
