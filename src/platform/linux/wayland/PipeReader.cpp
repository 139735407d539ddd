#include "platform/linux/wayland/PipeReader.h"

#include <QTimer>

#include <array>
#include <cerrno>
#include <chrono>

#include <fcntl.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto timeLimit = 500ms;
constexpr qsizetype sizeLimit = 64 * 1024 * 1024;

} // namespace

PipeReader::PipeReader(int descriptor)
    : m_descriptor(descriptor),
      m_notifier(descriptor, QSocketNotifier::Read)
{
    ::fcntl(m_descriptor, F_SETFL, O_NONBLOCK);
    connect(&m_notifier, &QSocketNotifier::activated, this, &PipeReader::read);
    QTimer::singleShot(timeLimit, this, [this] { give({}); });
}

PipeReader::~PipeReader()
{
    m_notifier.setEnabled(false);
    ::close(m_descriptor);
}

void PipeReader::read()
{
    std::array<char, 65536> part{};
    const ssize_t count = ::read(m_descriptor, part.data(), part.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0)
        return give(count == 0 ? m_bytes : QByteArray());
    m_bytes.append(part.data(), count);
    if (m_bytes.size() > sizeLimit)
        give({});
}

void PipeReader::give(const QByteArray &bytes)
{
    if (!m_notifier.isEnabled())
        return;
    m_notifier.setEnabled(false);
    m_bytes = bytes;
    Q_EMIT finished();
}
