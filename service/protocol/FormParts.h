#pragma once

#include "service/protocol/Refusal.h"

#include <httplib.h>

#include <expected>
#include <functional>
#include <map>
#include <string>

/// The parts of a multipart body, taken in as they arrive, so that one with too much in it is refused
/// without being held.
class FormParts
{
public:
    static constexpr size_t maximumRecording = size_t{25} << 20; // bytes; 570 s are 18.3 million
    static constexpr size_t maximumBody = maximumRecording + size_t{64} * 1024;

    /// The recording is the part "file"; every other part is a text of at most as many bytes as
    /// `textLimit` gives for its name, and one without a limit is passed over.
    using TextLimit = std::function<std::expected<std::optional<size_t>, Refusal>(const std::string &name)>;
    static std::expected<FormParts, Refusal>
    read(const httplib::Request &request, const httplib::ContentReader &body, const TextLimit &textLimit);

    /// The content of a part; empty when the form has none of this name.
    std::string take(const std::string &name);
    bool has(const std::string &name) const { return m_parts.contains(name); }

private:
    std::optional<Refusal> begin(const std::string &name, const TextLimit &textLimit);
    std::optional<Refusal> append(const char *bytes, size_t size);
    std::optional<Refusal> complaint() const;

    enum class Place { outside, kept, passedOver };
    Place m_place = Place::outside;
    size_t m_limit = 0;
    std::string *m_content = nullptr;
    std::map<std::string, std::string> m_parts;
};
