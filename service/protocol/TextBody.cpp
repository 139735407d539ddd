#include "service/protocol/TextBody.h"

std::expected<std::string, Refusal> TextBody::read(const httplib::Request &request,
                                                   const httplib::ContentReader &body, size_t limit)
{
    if (request.is_multipart_form_data())
        return std::unexpected(Refusal::badRequest("The request is not a JSON object in UTF-8."));
    std::string text;
    // A body in chunks announces no length.
    bool tooLarge = request.get_header_value<uint64_t>("Content-Length") > limit;
    const bool complete = !tooLarge && body([&](const char *bytes, size_t size) {
        tooLarge = text.size() + size > limit;
        if (!tooLarge)
            text.append(bytes, size);
        return !tooLarge;
    });
    if (tooLarge)
        return std::unexpected(Refusal::tooLarge("The text is too long."));
    if (!complete)
        return std::unexpected(Refusal::forStatus(400));
    return text;
}
