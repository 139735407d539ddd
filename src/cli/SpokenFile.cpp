#include "cli/SpokenFile.h"

#include "base/WavHeader.h"
#include "cli/Terminal.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <vector>

#include <samplerate.h>
#include <sndfile.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int sampleRate = 16000;
constexpr qint64 longestMinutes = 13; // 25 MB
constexpr qint64 mostInput = 200'000'000;
constexpr int mostChannels = 32;
constexpr auto conversionLimit = 60s;
constexpr sf_count_t blockFrames = 4096;

using Refusal = SpokenFile::Refusal;
using SoundFile = std::unique_ptr<SNDFILE, int (*)(SNDFILE *)>;
using Converter = std::unique_ptr<SRC_STATE, SRC_STATE *(*)(SRC_STATE *)>;

std::unexpected<Refusal> refused(const QString &sentence, int status = ExitCode::failed)
{
    return std::unexpected(Refusal{sentence, status});
}

/// A file of the moment, for the user alone.
std::unique_ptr<QTemporaryFile> temporaryFile()
{
    return std::make_unique<QTemporaryFile>(QDir::tempPath() + u"/transcribe-XXXXXX.wav"_s);
}

/// All that comes, in a file that can be read at any place.
std::expected<std::unique_ptr<QTemporaryFile>, Refusal> copyOf(QFile &stream)
{
    auto copy = temporaryFile();
    if (!copy->open())
        return refused(copy->errorString() + u'.');
    QByteArray block(1 << 16, Qt::Uninitialized);
    for (qint64 read = 0; (read = stream.read(block.data(), block.size())) > 0;) {
        if (copy->write(block.constData(), read) != read)
            return refused(copy->errorString() + u'.');
        if (copy->size() > mostInput)
            return refused(u"The recording is larger than %1 MB."_s.arg(mostInput / 1'000'000));
    }
    if (!copy->flush())
        return refused(copy->errorString() + u'.');
    return copy;
}

/// One channel of many: their mean.
void mix(const std::vector<float> &frames, qsizetype count, int channels, std::vector<float> &mono)
{
    for (qsizetype i = 0; i < count; ++i) {
        float sum = 0;
        for (int channel = 0; channel < channels; ++channel)
            sum += frames[i * channels + channel];
        mono[i] = sum / static_cast<float>(channels);
    }
}

/// Writes samples of any rate as the form wants them, behind room for the header.
class SpeechWriter
{
public:
    SpeechWriter(QTemporaryFile &file, int rate)
        : m_file(file),
          m_ratio(static_cast<double>(sampleRate) / rate),
          m_converter(src_new(SRC_SINC_MEDIUM_QUALITY, 1, nullptr), src_delete)
    {
    }

    bool isUsable() const { return m_converter && src_is_valid_ratio(m_ratio) != 0; }
    bool begin() { return m_file.write(QByteArray(WavHeader::size, '\0')) == WavHeader::size; }
    qint64 written() const { return m_written; }

    bool add(const std::vector<float> &samples, qsizetype count, bool isLast)
    {
        std::vector<float> converted(4 * blockFrames);
        SRC_DATA data = {};
        data.data_in = samples.data();
        data.input_frames = count;
        data.end_of_input = isLast ? 1 : 0;
        data.src_ratio = m_ratio;
        data.data_out = converted.data();
        data.output_frames = static_cast<long>(converted.size());
        do {
            if (src_process(m_converter.get(), &data) != 0)
                return false;
            std::vector<short> whole(data.output_frames_gen);
            src_float_to_short_array(converted.data(), whole.data(), static_cast<int>(whole.size()));
            const qint64 bytes = static_cast<qint64>(whole.size() * sizeof(short));
            if (m_file.write(reinterpret_cast<const char *>(whole.data()), bytes) != bytes)
                return false;
            m_written += static_cast<qint64>(whole.size());
            data.data_in += data.input_frames_used;
            data.input_frames -= data.input_frames_used;
        } while (data.input_frames > 0 || data.output_frames_gen == data.output_frames);
        return true;
    }

    bool finish()
    {
        const auto header =
            WavHeader::of(sampleRate, static_cast<uint32_t>(m_written * WavHeader::sampleSize));
        return m_file.seek(0) && m_file.write(header.data(), header.size()) == qint64(header.size()) &&
               m_file.flush();
    }

private:
    QTemporaryFile &m_file;
    double m_ratio;
    Converter m_converter;
    qint64 m_written = 0; // samples
};

std::expected<std::unique_ptr<QTemporaryFile>, Refusal> converted(SNDFILE *sound, const SF_INFO &info)
{
    auto copy = temporaryFile();
    SpeechWriter writer(*copy, info.samplerate);
    if (info.channels > mostChannels || !writer.isUsable())
        return refused(u"The recording has %1 channels of %2 samples a second, which cannot be converted."_s
                           .arg(info.channels)
                           .arg(info.samplerate));
    if (!copy->open() || !writer.begin())
        return refused(copy->errorString() + u'.');
    const QDeadlineTimer limit(conversionLimit);
    std::vector<float> frames(blockFrames * info.channels);
    std::vector<float> mono(blockFrames);
    for (bool isLast = false; !isLast;) {
        const sf_count_t count = sf_readf_float(sound, frames.data(), blockFrames);
        isLast = count <= 0;
        mix(frames, std::max<sf_count_t>(count, 0), info.channels, mono);
        if (!writer.add(mono, std::max<sf_count_t>(count, 0), isLast))
            return refused(u"The recording could not be converted: %1."_s.arg(copy->errorString()));
        if (writer.written() > longestMinutes * 60 * sampleRate)
            return refused(u"The recording is longer than %1 minutes."_s.arg(longestMinutes));
        if (limit.hasExpired())
            return refused(u"The recording took too long to convert."_s);
    }
    if (!writer.finish())
        return refused(copy->errorString() + u'.');
    return copy;
}

} // namespace

std::expected<SpokenFile, SpokenFile::Refusal> SpokenFile::of(const QString &path)
{
    QFile file(path);
    const bool isInput = path == u"-"_s;
    if (isInput ? !file.open(stdin, QIODevice::ReadOnly) : !file.open(QIODevice::ReadOnly))
        return refused(u"%1: %2."_s.arg(path, file.errorString()), ExitCode::noInput);
    SpokenFile spoken;
    spoken.m_path = path;
    if (isInput || !QFileInfo(path).isFile()) {
        auto copy = copyOf(file);
        if (!copy)
            return std::unexpected(copy.error());
        spoken.m_copy = *std::move(copy);
        spoken.m_path = spoken.m_copy->fileName();
    }
    SF_INFO info = {};
    const SoundFile sound(sf_open(QFile::encodeName(spoken.m_path).constData(), SFM_READ, &info), sf_close);
    if (!sound)
        return refused(
            u"This is not a recording that can be read: %1"_s.arg(QString::fromUtf8(sf_strerror(nullptr))));
    const bool isReady = info.format == (SF_FORMAT_WAV | SF_FORMAT_PCM_16) && info.channels == 1 &&
                         info.samplerate == sampleRate;
    if (isReady)
        return spoken;
    auto copy = converted(sound.get(), info);
    if (!copy)
        return std::unexpected(copy.error());
    spoken.m_copy = *std::move(copy);
    spoken.m_path = spoken.m_copy->fileName();
    return spoken;
}
