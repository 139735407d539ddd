#include "machine/wayland/PipeReader.h"

#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

PipeReader::PipeReader(int descriptor, std::shared_ptr<qsizetype> room)
    : m_descriptor(descriptor),
      m_room(std::move(room)),
      m_notifier(descriptor, QSocketNotifier::Read)
{
    ::fcntl(m_descriptor, F_SETFL, O_NONBLOCK);
    connect(&m_notifier, &QSocketNotifier::activated, this, &PipeReader::read);
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
    if (*m_room < count) {
        *m_room += m_bytes.size();
        return give({});
    }
    *m_room -= count;
    m_bytes.append(part.data(), count);
}

void PipeReader::give(const QByteArray &bytes)
{
    if (!m_notifier.isEnabled())
        return;
    m_notifier.setEnabled(false);
    m_bytes = bytes;
    Q_EMIT finished();
}
