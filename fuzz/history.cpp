#include "history/HistoryFile.h"
#include "preferences/HotkeySpec.h"

#include <cstdlib>

/// What can be read is written in a form that reads back the same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto *bytes = reinterpret_cast<const char *>(data);
    const QByteArray json(bytes, static_cast<qsizetype>(size));
    if (const auto records = HistoryFile::decode(json)) {
        const auto again = HistoryFile::decode(HistoryFile::encode(*records));
        if (!again || *again != *records)
            std::abort();
    }
    const HotkeySpec spec = HotkeySpec::decode(QString::fromUtf8(json));
    if (HotkeySpec::decode(spec.jsonString()) != spec)
        std::abort();
    return 0;
}
