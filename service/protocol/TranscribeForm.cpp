#include "service/protocol/TranscribeForm.h"

#include "service/text/Utf8.h"

std::expected<TranscribeForm, Refusal> TranscribeForm::read(const httplib::ContentReader &body)
{
    TranscribeForm form;
    std::optional<Refusal> refusal;
    const bool complete = body(
        [&](const httplib::MultipartFormData &part) {
            refusal = form.begin(part.name);
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
    form.m_current = nullptr;
    return form;
}

std::optional<Refusal> TranscribeForm::begin(const std::string &name)
{
    m_current = name == "file"       ? &m_recording
                : name == "language" ? &m_language
                : name == "prompt"   ? &m_prompt
                                     : nullptr;
    if (!m_current) {
        return Refusal::badRequest(
            "The form has a part that is not known. Known are file, language and prompt.");
    }
    if (m_current->seen)
        return Refusal::badRequest("The form has the same part twice.");
    m_current->seen = true;
    return {};
}

std::optional<Refusal> TranscribeForm::append(const char *bytes, size_t size)
{
    if (!m_current)
        return Refusal::badRequest("The form has content outside its parts.");
    if (m_current->content.size() + size > m_current->limit) {
        return m_current == &m_recording ? Refusal::tooLarge("The recording is too long. The limit is 25 MB.")
                                         : Refusal::badRequest("A text of the form is too long.");
    }
    m_current->content.append(bytes, size);
    return {};
}

std::optional<Refusal> TranscribeForm::complaint() const
{
    if (!m_recording.seen)
        return Refusal::badRequest("The form has no recording: the part file is missing.");
    if (!Utf8::isValid(m_language.content) || !Utf8::isValid(m_prompt.content))
        return Refusal::badRequest("A text of the form is not valid UTF-8.");
    return {};
}
