#include "service/speech/SpeechEngine.h"

#include "service/speech/Pieces.h"
#include "service/speech/Recognizer.h"

#include <chrono>
#include <exception>

using namespace std::chrono_literals;

namespace {

Pace::Seconds secondsOf(size_t samples)
{
    return Pace::Seconds(static_cast<double>(samples) / Recording::sampleRate);
}

} // namespace

/// A recording in work. It lives on the stack of the thread that waits for it.
struct SpeechEngine::Job
{
    std::vector<Pieces::Samples> pieces;
    std::vector<std::string> words = std::vector<std::string>(pieces.size());
    size_t taken = 0;
    size_t inWork = 0;
    std::exception_ptr failure = nullptr;

    /// The sound that no decoder has taken yet.
    Pace::Seconds waiting() const
    {
        size_t samples = 0;
        for (size_t i = taken; i < pieces.size(); ++i)
            samples += pieces[i].size();
        return secondsOf(samples);
    }
    bool isDone() const { return taken == pieces.size() && inWork == 0; }
    void dropTheRest() { taken = pieces.size(); }
};

namespace {

std::string joined(const std::vector<std::string> &parts)
{
    std::string text;
    for (const std::string &part : parts) {
        if (!part.empty())
            text += text.empty() ? part : ' ' + part;
    }
    return text;
}

} // namespace

SpeechEngine::SpeechEngine(const SpeechModel &model, size_t decoders)
{
    m_recognizers.reserve(decoders);
    for (size_t i = 0; i < decoders; ++i)
        m_recognizers.emplace_back(model);
    for (Recognizer &recognizer : m_recognizers)
        m_threads.emplace_back([this, &recognizer] { work(recognizer); });
}

SpeechEngine::~SpeechEngine()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        m_changed.notify_all();
    }
    for (std::thread &thread : m_threads)
        thread.join();
}

std::optional<std::string> SpeechEngine::transcribe(const Recording &recording,
                                                    const std::function<bool()> &isUnwanted)
{
    Job job{Pieces::of(recording.samples)};
    std::unique_lock lock(m_mutex);
    m_jobs.push_back(&job);
    m_changed.notify_all();
    bool unwanted = false;
    while (!m_changed.wait_for(lock, 200ms, [&job] { return job.isDone(); })) {
        unwanted = unwanted || isUnwanted();
        if (unwanted && job.taken < job.pieces.size()) {
            m_jobs.remove(&job);
            job.dropTheRest();
        }
    }
    if (job.failure)
        std::rethrow_exception(job.failure);
    if (unwanted)
        return {};
    return joined(job.words);
}

Pace::Seconds SpeechEngine::expected(Pace::Seconds sound)
{
    const std::lock_guard lock(m_mutex);
    std::vector<Pace::Seconds> waiting;
    for (const Job *job : m_jobs)
        waiting.push_back(job->waiting());
    return waiting.empty() ? Pace::Seconds(0) : m_pace.expected(sound, waiting, m_recognizers.size());
}

void SpeechEngine::work(Recognizer &recognizer)
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_stopping || !m_jobs.empty(); });
        if (m_stopping)
            return;
        Job &job = *m_jobs.front();
        m_jobs.pop_front();
        const size_t index = job.taken++;
        ++job.inWork;
        if (job.taken < job.pieces.size())
            m_jobs.push_back(&job);
        lock.unlock();
        std::string words;
        std::exception_ptr failure;
        const auto began = std::chrono::steady_clock::now();
        const bool silent = Pieces::isSilent(job.pieces[index]);
        try {
            if (!silent)
                words = recognizer.wordsIn(job.pieces[index]);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        if (!silent)
            m_pace.add(secondsOf(job.pieces[index].size()), std::chrono::steady_clock::now() - began);
        job.words[index] = std::move(words);
        --job.inWork;
        if (failure) {
            job.failure = failure;
            m_jobs.remove(&job);
            job.dropTheRest();
        }
        m_changed.notify_all();
    }
}
