#include "service/speech/Recognizer.h"

#include <pocketsphinx.h>

#include <array>
#include <stdexcept>

namespace {

ps_decoder_t *loaded(const SpeechModel &model)
{
    // The first pass alone: on human speech the two passes after it took a third of the time and made
    // more mistakes than they mended. The bounds keep noise from being slow.
    cmd_ln_t *settings =
        cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", model.acoustic.c_str(), "-lm", model.language.c_str(),
                    "-dict", model.dictionary.c_str(), "-logfn", "/dev/null", "-fwdflat", "no", "-bestpath",
                    "no", "-maxhmmpf", "3000", "-maxwpf", "15", nullptr);
    ps_decoder_t *decoder = settings ? ps_init(settings) : nullptr;
    cmd_ln_free_r(settings);
    if (!decoder)
        throw std::runtime_error("cannot load the speech model " + model.acoustic.string());
    return decoder;
}

} // namespace

Recognizer::Recognizer(const SpeechModel &model)
    : m_decoder(loaded(model), [](ps_decoder_s *decoder) { ps_free(decoder); })
{
}

std::string Recognizer::wordsIn(std::span<const std::int16_t> samples)
{
    ps_decoder_t *decoder = m_decoder.get();
    if (ps_start_utt(decoder) < 0)
        throw std::runtime_error("the speech decoder does not start");
    const int heard = ps_process_raw(decoder, samples.data(), samples.size(), FALSE, TRUE);
    if (ps_end_utt(decoder) < 0 || heard < 0)
        throw std::runtime_error("the speech decoder failed");
    const char *words = ps_get_hyp(decoder, nullptr);
    return words ? words : "";
}
