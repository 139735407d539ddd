#include "service/speech/Recording.h"

#include <cstdlib>
#include <string_view>

/// No upload is read beyond its end.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    if (const auto recording = Recording::fromWav(bytes); recording && recording->samples.size() * 2 > size)
        std::abort();
    return 0;
}
