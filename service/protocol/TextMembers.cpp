#include "service/protocol/TextMembers.h"

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
