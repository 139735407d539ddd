#include "service/openai/AudioForm.h"

#include "service/openai/OpenAiError.h"
#include "service/protocol/FormParts.h"
#include "service/text/Utf8.h"

namespace {

constexpr size_t shortText = 256; // bytes

std::expected<std::optional<size_t>, Refusal> textLimit(const std::string &name)
{
    if (name == "prompt")
        return Upload::maximumPrompt;
    if (name == "language")
        return Upload::maximumLanguage;
    if (name == "model" || name == "response_format" || name == "stream")
        return shortText;
    if (name.starts_with("timestamp_granularities")) {
        return std::unexpected(
            OpenAiError::badParameter("timestamp_granularities", "Timestamps are not available."));
    }
    return std::nullopt;
}

std::expected<AudioForm::Format, Refusal> formatNamed(std::string_view name)
{
    if (name.empty() || name == "json")
        return AudioForm::Format::json;
    if (name == "text")
        return AudioForm::Format::text;
    if (name == "verbose_json")
        return AudioForm::Format::verboseJson;
    return std::unexpected(OpenAiError::badParameter(
        "response_format", "This response_format is not available. Available: json, text, verbose_json."));
}

} // namespace

std::expected<AudioForm, Refusal> AudioForm::read(const httplib::Request &request,
                                                  const httplib::ContentReader &body)
{
    if (!request.is_multipart_form_data()) {
        return std::unexpected(
            Refusal{415, "unsupported_content_type", "This address takes multipart/form-data only."});
    }
    auto parts = FormParts::read(request, body, textLimit);
    if (!parts)
        return std::unexpected(parts.error());
    const auto format = formatNamed(Utf8::trimmed(parts->take("response_format")));
    if (!format)
        return std::unexpected(format.error());
    if (parts->take("stream") == "true") {
        return std::unexpected(
            OpenAiError::badParameter("stream", "Transcriptions are not streamed. Leave stream out."));
    }
    AudioForm form{{parts->take("file"), parts->take("language"), parts->take("prompt")},
                   std::string(Utf8::trimmed(parts->take("model"))),
                   *format};
    if (form.model.empty())
        return std::unexpected(OpenAiError::badParameter("model", "The form has no model."));
    return form;
}
