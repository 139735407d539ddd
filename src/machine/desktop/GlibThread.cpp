#include "machine/desktop/GlibThread.h"

#include <utility>

using Work = std::function<void()>;

GlibThread::GlibThread()
    : m_context(g_main_context_new()),
      m_loop(g_main_loop_new(m_context.get(), FALSE)),
      m_thread([this] {
          g_main_context_push_thread_default(m_context.get());
          g_main_loop_run(m_loop.get());
          while (g_main_context_iteration(m_context.get(), FALSE)) {
              // GIO gives back here what it held for others
          }
          g_main_context_pop_thread_default(m_context.get());
      })
{
}

GlibThread::~GlibThread()
{
    run([this] { g_main_loop_quit(m_loop.get()); });
    m_thread.join();
}

void GlibThread::run(std::function<void()> work)
{
    const GlibPointer<GSource> source(g_idle_source_new());
    g_source_set_priority(source.get(), G_PRIORITY_DEFAULT);
    const auto doIt = [](gpointer data) -> gboolean {
        (*static_cast<Work *>(data))();
        return G_SOURCE_REMOVE;
    };
    const auto forget = [](gpointer data) { delete static_cast<Work *>(data); };
    g_source_set_callback(source.get(), doIt, new Work(std::move(work)), forget);
    g_source_attach(source.get(), m_context.get());
}

void GlibThread::runUntil(const std::function<bool()> &condition)
{
    while (!condition())
        g_main_context_iteration(m_context.get(), TRUE);
}
