#pragma once

#include "service/protocol/Refusal.h"

#include <expected>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

#include <httplib.h>

/// Those members of a JSON object that a request may have, all of them texts. Others are ignored.
class TextMembers
{
public:
    /// Reads a body; anything but an object in UTF-8, or a member of another type, is refused.
    static std::expected<TextMembers, Refusal> in(std::string_view body,
                                                  std::initializer_list<std::string_view> names);

    bool has(std::string_view name) const { return m_members.contains(name); }
    /// Empty when the object has no such member.
    std::string operator[](std::string_view name) const;

private:
    std::map<std::string, std::string, std::less<>> m_members;
};

/// A request's body that is not a form.
namespace TextBody {

/// Reads it to its end, or until it is longer than `limit` bytes.
std::expected<std::string, Refusal> read(const httplib::Request &request, const httplib::ContentReader &body,
                                         size_t limit);

} // namespace TextBody
