#include "service/dictation/RulesCleaner.h"

#include "service/cleanup/Editor.h"

std::expected<Cleaner::Result, Refusal> RulesCleaner::edited(const CleanupRequest &request,
                                                             const std::function<bool()> &)
{
    Editor::Result result = Editor::edited(request.text, request.vocabulary, request.language);
    return Result{std::move(result.text), result.skipped};
}
