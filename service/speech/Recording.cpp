#include "service/speech/Recording.h"

namespace {

constexpr std::uint16_t pcm = 1;
constexpr std::uint16_t extensible = 0xfffe; // the true format follows further on

std::uint32_t littleEndian(std::string_view bytes, size_t offset, int size)
{
    std::uint32_t value = 0;
    for (int i = size - 1; i >= 0; --i)
        value = value << 8 | static_cast<unsigned char>(bytes[offset + static_cast<size_t>(i)]);
    return value;
}

/// The complaint about a "fmt " chunk; empty when it is the format we read.
std::string formatComplaint(std::string_view chunk)
{
    if (chunk.size() < 16)
        return "The recording is damaged: its format is cut off.";
    std::uint32_t format = littleEndian(chunk, 0, 2);
    if (format == extensible && chunk.size() >= 26)
        format = littleEndian(chunk, 24, 2);
    const auto channels = littleEndian(chunk, 2, 2);
    const auto rate = littleEndian(chunk, 4, 4);
    const auto bits = littleEndian(chunk, 14, 2);
    if (format == pcm && channels == 1 && rate == Recording::sampleRate && bits == 16)
        return {};
    return "The recording must be 16-bit PCM with one channel at 16000 Hz.";
}

Recording decoded(std::string_view data)
{
    Recording recording;
    recording.samples.reserve(data.size() / 2);
    for (size_t i = 0; i + 1 < data.size(); i += 2)
        recording.samples.push_back(static_cast<std::int16_t>(littleEndian(data, i, 2)));
    return recording;
}

/// The bytes of the samples.
std::expected<std::string_view, std::string> soundIn(std::string_view bytes)
{
    if (bytes.size() < 12 || bytes.substr(0, 4) != "RIFF" || bytes.substr(8, 4) != "WAVE")
        return std::unexpected("The recording is not a WAV file.");
    bool formatSeen = false;
    for (size_t at = 12; at + 8 <= bytes.size();) {
        const auto name = bytes.substr(at, 4);
        const std::uint32_t size = littleEndian(bytes, at + 4, 4);
        at += 8;
        const size_t left = bytes.size() - at;
        if (name == "data") {
            if (!formatSeen)
                return std::unexpected("The recording is damaged: it does not name its format.");
            const bool open = size == 0 || size == 0xffffffff;
            if (!open && size > left)
                return std::unexpected("The recording is incomplete.");
            return bytes.substr(at, open ? left : size);
        }
        if (size > left)
            break;
        if (name == "fmt ") {
            if (const std::string complaint = formatComplaint(bytes.substr(at, size)); !complaint.empty())
                return std::unexpected(complaint);
            formatSeen = true;
        }
        at += size + (size & 1); // chunks begin at even offsets
    }
    return std::unexpected("The recording is damaged: it holds no sound.");
}

} // namespace

std::expected<Recording, std::string> Recording::fromWav(std::string_view bytes)
{
    const auto sound = soundIn(bytes);
    if (!sound)
        return std::unexpected(sound.error());
    return decoded(*sound);
}

std::expected<double, std::string> Recording::secondsOfWav(std::string_view bytes)
{
    const auto sound = soundIn(bytes);
    if (!sound)
        return std::unexpected(sound.error());
    return static_cast<double>(sound->size() / 2) / sampleRate;
}
