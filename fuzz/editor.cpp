#include "service/cleanup/Editor.h"
#include "service/protocol/CleanupRequest.h"

#include <string_view>

/// No request and no text stops the editor.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    if (const auto request = CleanupRequest::fromJson(bytes))
        Editor::edited(request->text, request->vocabulary, request->language);
    return 0;
}
