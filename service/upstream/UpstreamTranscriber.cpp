#include "service/upstream/UpstreamTranscriber.h"

#include "service/protocol/BoundedJson.h"
#include "service/text/Utf8.h"
#include "service/upstream/UpstreamFault.h"

#include <nlohmann/json.hpp>

#include <random>

namespace {

std::string freshBoundary()
{
    std::random_device random;
    std::string boundary = "Sayvane-";
    for (int i = 0; i < 4; ++i)
        boundary += std::to_string(random());
    return boundary;
}

} // namespace

std::expected<std::string, Refusal> UpstreamTranscriber::transcribe(Upload upload,
                                                                    const std::function<bool()> &isUnwanted)
{
    const std::string boundary = freshBoundary();
    std::string head;
    const auto addText = [&](const char *name, std::string_view value) {
        if (!value.empty()) {
            head += "--" + boundary + "\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n";
            head.append(value) += "\r\n";
        }
    };
    addText("model", model());
    addText("response_format", "json");
    addText("language", Utf8::trimmed(upload.language));
    addText("prompt", Utf8::trimmed(upload.prompt));
    head += "--" + boundary +
            "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n"
            "Content-Type: audio/wav\r\n\r\n";
    upload.wav.insert(0, head); // in its place: a second copy may be 25 MB
    upload.wav += "\r\n--" + boundary + "--\r\n";
    const auto answer = m_client.post(
        {"/audio/transcriptions", "multipart/form-data; boundary=" + boundary, std::move(upload.wav)},
        m_client.upstream().patience, isUnwanted);
    if (!answer)
        return std::unexpected(answer.error());
    const nlohmann::json document = BoundedJson::parsed(*answer);
    if (!document.is_object() || !document.contains("text") || !document["text"].is_string())
        return std::unexpected(UpstreamFault::notUnderstood());
    return std::string(Utf8::trimmed(document["text"].get_ref<const std::string &>()));
}
