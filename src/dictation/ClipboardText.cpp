#include "dictation/ClipboardText.h"

#include <optional>

using namespace Qt::StringLiterals;

namespace {

std::optional<QString> textOf(const PasteboardItem &item)
{
    for (const auto &type : {"UTF8_STRING"_L1, "text/plain;charset=utf-8"_L1, "text/plain"_L1, "STRING"_L1}) {
        for (const PasteboardData &data : item) {
            if (data.type.compare(type, Qt::CaseInsensitive) != 0)
                continue;
            // the oldest format is Latin-1 by definition
            return type == "STRING"_L1 ? QString::fromLatin1(data.bytes) : QString::fromUtf8(data.bytes);
        }
    }
    return std::nullopt;
}

} // namespace

QString ClipboardText::of(const QList<PasteboardItem> &items)
{
    for (const PasteboardItem &item : items) {
        if (const auto text = textOf(item))
            return *text;
    }
    return {};
}
