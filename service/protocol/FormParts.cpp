#include "service/protocol/FormParts.h"

#include "service/text/Utf8.h"

#include <algorithm>
#include <utility>

namespace {

Refusal tooLongRecording()
{
    return Refusal::tooLarge("The recording is too long. The limit is 25 MB.");
}

} // namespace

std::expected<FormParts, Refusal> FormParts::read(const httplib::Request &request,
                                                  const httplib::ContentReader &body,
                                                  const TextLimit &textLimit)
{
    if (!request.is_multipart_form_data())
        return std::unexpected(Refusal::badRequest("The request is not a multipart form."));
    if (request.get_header_value<uint64_t>("Content-Length") > maximumBody)
        return std::unexpected(tooLongRecording());
    FormParts form;
    std::optional<Refusal> refusal;
    const bool complete = body(
        [&](const httplib::MultipartFormData &part) {
            refusal = form.begin(part.name, textLimit);
            return !refusal;
        },
        [&](const char *bytes, size_t size) {
            refusal = form.append(bytes, size);
            return !refusal;
        });
    if (!refusal && !complete)
        refusal = Refusal::badRequest("The upload is incomplete or not a valid form.");
    if (!refusal)
        refusal = form.complaint();
    if (refusal)
        return std::unexpected(*refusal);
    form.m_content = nullptr;
    return form;
}

std::string FormParts::take(const std::string &name)
{
    const auto part = m_parts.find(name);
    return part == m_parts.end() ? std::string() : std::move(part->second);
}

std::optional<Refusal> FormParts::begin(const std::string &name, const TextLimit &textLimit)
{
    const auto limit =
        name == "file" ? std::expected<std::optional<size_t>, Refusal>(maximumRecording) : textLimit(name);
    if (!limit)
        return limit.error();
    m_place = limit->has_value() ? Place::kept : Place::passedOver;
    if (m_place == Place::passedOver)
        return {};
    const auto [part, isNew] = m_parts.try_emplace(name);
    if (!isNew)
        return Refusal::badRequest("The form has the same part twice.");
    m_content = &part->second;
    m_limit = **limit;
    return {};
}

std::optional<Refusal> FormParts::append(const char *bytes, size_t size)
{
    if (m_place == Place::outside)
        return Refusal::badRequest("The form has content outside its parts.");
    if (m_place == Place::passedOver)
        return {};
    if (m_content->size() + size > m_limit) {
        return m_limit == maximumRecording ? tooLongRecording()
                                           : Refusal::badRequest("A text of the form is too long.");
    }
    m_content->append(bytes, size);
    return {};
}

std::optional<Refusal> FormParts::complaint() const
{
    if (!has("file"))
        return Refusal::badRequest("The form has no recording: the part file is missing.");
    const bool readable = std::ranges::all_of(
        m_parts, [](const auto &part) { return part.first == "file" || Utf8::isValid(part.second); });
    return readable ? std::nullopt
                    : std::optional(Refusal::badRequest("A text of the form is not valid UTF-8."));
}
