#include "service/protocol/TextBody.h"

#include "service/protocol/BoundedJson.h"

#include <nlohmann/json.hpp>

std::expected<TextMembers, Refusal> TextMembers::in(std::string_view body,
                                                    std::initializer_list<std::string_view> names)
{
    const nlohmann::json document = BoundedJson::parsed(body);
    if (!document.is_object())
        return std::unexpected(Refusal::badRequest("The request is not a JSON object in UTF-8."));
    TextMembers result;
    for (const std::string_view name : names) {
        const auto member = document.find(name);
        if (member == document.end())
            continue;
        if (!member->is_string()) {
            return std::unexpected(
                Refusal::badRequest("The member " + std::string(name) + " is not a text."));
        }
        result.m_members.emplace(name, member->get<std::string>());
    }
    return result;
}

std::string TextMembers::operator[](std::string_view name) const
{
    const auto member = m_members.find(name);
    return member == m_members.end() ? std::string() : member->second;
}

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
