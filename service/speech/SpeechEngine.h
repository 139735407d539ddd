#pragma once

#include "service/speech/Pace.h"
#include "service/speech/Recording.h"
#include "service/speech/SpeechModel.h"

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

class Recognizer;

/// Turns recordings into words with a fixed number of decoders, each on a thread of its own.
///
/// Recordings are decoded in pieces, one piece of each in turn: a short one does not wait for the whole
/// of a long one.
class SpeechEngine
{
public:
    /// Loads the model once per decoder. Throws std::runtime_error.
    SpeechEngine(const SpeechModel &model, size_t decoders);
    ~SpeechEngine();

    /// The words of the recording. Asks several times a second whether the work is still wanted and
    /// returns nothing once it is not. Throws when a decoder fails.
    std::optional<std::string> transcribe(const Recording &recording,
                                          const std::function<bool()> &isUnwanted);

    /// How long a recording would be in work if it came now; zero while none is waiting.
    Pace::Seconds expected(Pace::Seconds sound);

private:
    struct Job;

    void work(Recognizer &recognizer);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::list<Job *> m_jobs; // with pieces that no decoder has taken; the front one is next
    Pace m_pace;
    bool m_stopping = false;
    std::vector<Recognizer> m_recognizers;
    std::vector<std::thread> m_threads;
};
