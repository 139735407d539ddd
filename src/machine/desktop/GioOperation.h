#pragma once

#include "base/Completion.h"
#include "machine/desktop/GlibPointer.h"

/// One asynchronous operation of GIO, for the coroutine that began it on the thread of its main context:
/// `ended` and the operation itself are GIO's callback and its data.
class GioOperation
{
public:
    using Result = std::shared_ptr<GAsyncResult>;
    using Awaiter = Completion<Result>::Awaiter;

    static void ended(GObject *, GAsyncResult *result, gpointer self)
    {
        const Result kept = glibShared(G_ASYNC_RESULT(g_object_ref(result)));
        static_cast<GioOperation *>(self)->m_completion.complete(kept);
    }

    /// What to `co_await`; the operation must stay in place meanwhile.
    Awaiter result() { return Awaiter{&m_completion}; }

private:
    Completion<Result> m_completion;
};
