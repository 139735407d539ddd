#include "service/protocol/TranscribeForm.h"

#include "service/protocol/FormParts.h"

std::expected<Upload, Refusal> TranscribeForm::read(const httplib::Request &request,
                                                    const httplib::ContentReader &body)
{
    auto form = FormParts::read(
        request, body, [](const std::string &name) -> std::expected<std::optional<size_t>, Refusal> {
            if (name == "language")
                return Upload::maximumLanguage;
            if (name == "prompt")
                return Upload::maximumPrompt;
            return std::unexpected(Refusal::badRequest(
                "The form has a part that is not known. Known are file, language and prompt."));
        });
    if (!form)
        return std::unexpected(form.error());
    return Upload{form->take("file"), form->take("language"), form->take("prompt")};
}
