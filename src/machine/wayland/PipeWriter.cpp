#include "machine/wayland/PipeWriter.h"

#include <QTimer>

#include <cerrno>
#include <chrono>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto timeLimit = 10s;

} // namespace

PipeWriter::PipeWriter(int descriptor, QByteArray bytes, QObject *parent)
    : QObject(parent),
      m_descriptor(descriptor),
      m_notifier(descriptor, QSocketNotifier::Write),
      m_bytes(std::move(bytes))
{
    ::fcntl(m_descriptor, F_SETFL, O_NONBLOCK);
    connect(&m_notifier, &QSocketNotifier::activated, this, &PipeWriter::write);
    QTimer::singleShot(timeLimit, this, &QObject::deleteLater);
}

PipeWriter::~PipeWriter()
{
    m_notifier.setEnabled(false);
    ::close(m_descriptor);
}

void PipeWriter::write()
{
    const ssize_t count = ::write(m_descriptor, m_bytes.constData() + m_written,
                                  static_cast<size_t>(m_bytes.size() - m_written));
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count > 0)
        m_written += count;
    if (count >= 0 && m_written < m_bytes.size())
        return;
    m_notifier.setEnabled(false);
    deleteLater();
}
