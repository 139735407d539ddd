#include "machine/sound/WavFile.h"

#include "base/WavHeader.h"

#include <QFile>

#include <cerrno>
#include <limits>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uint32_t headerSize = WavHeader::size;
constexpr uint32_t sampleSize = WavHeader::sampleSize;
constexpr uint32_t largest = std::numeric_limits<int32_t>::max(); // more than 18 hours at 16 kHz

} // namespace

std::expected<WavFile, QString> WavFile::create(const QString &path, uint32_t sampleRate)
{
    const int file = ::open(QFile::encodeName(path).constData(),
                            O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
        return std::unexpected(qt_error_string(errno));
    WavFile wav(file, sampleRate);
    if (!wav.writeHeader()) {
        const QString cause = qt_error_string(errno);
        QFile::remove(path);
        return std::unexpected(cause);
    }
    lseek(file, headerSize, SEEK_SET);
    return wav;
}

WavFile::WavFile(WavFile &&other) noexcept
    : m_file(std::exchange(other.m_file, -1)),
      m_sampleRate(other.m_sampleRate),
      m_size(other.m_size),
      m_promised(other.m_promised)
{
}

WavFile::~WavFile()
{
    close();
}

std::expected<void, QString> WavFile::append(QByteArrayView pcm)
{
    if (m_file < 0)
        return std::unexpected(qt_error_string(EBADF));
    int cause = pcm.size() > largest - m_size ? EFBIG : 0;
    while (!pcm.isEmpty() && cause == 0) {
        const ssize_t written = ::write(m_file, pcm.data(), static_cast<size_t>(pcm.size()));
        if (written > 0) {
            m_size += static_cast<uint32_t>(written);
            pcm = pcm.sliced(written);
        } else if (written == 0 || errno != EINTR) {
            cause = written == 0 ? ENOSPC : errno;
        }
    }
    if (cause != 0) {
        close();
        return std::unexpected(qt_error_string(cause));
    }
    if (m_size - m_promised >= m_sampleRate * sampleSize / 2)
        writeHeader();
    return {};
}

void WavFile::close()
{
    if (m_file < 0)
        return;
    if (m_size % sampleSize != 0) { // a full disk may cut a sample in two
        m_size -= m_size % sampleSize;
        // Should this fail, the header still leaves the odd byte out.
        [[maybe_unused]] const int cut = ftruncate(m_file, headerSize + m_size);
    }
    writeHeader();
    ::close(std::exchange(m_file, -1));
}

bool WavFile::writeHeader()
{
    const auto header = WavHeader::of(m_sampleRate, m_size);
    const ssize_t written = pwrite(m_file, header.data(), header.size(), 0);
    if (written != ssize_t(header.size())) {
        errno = written < 0 ? errno : ENOSPC;
        return false;
    }
    m_promised = m_size;
    return true;
}
