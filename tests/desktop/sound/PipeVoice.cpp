#include "desktop/sound/PipeVoice.h"

#include <QFile>
#include <QTest>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

PipeVoice::PipeVoice(const QString &pipe) : m_pipe(open(QFile::encodeName(pipe).constData(), O_WRONLY | O_CLOEXEC))
{
}

PipeVoice::~PipeVoice()
{
    close(m_pipe);
}

QString PipeVoice::microphone(const QString &name, const QString &pipe)
{
    return u"module-pipe-source source_name=%1 file=%2 format=s16le rate=16000 channels=1"_s.arg(name, pipe);
}

void PipeVoice::say(qsizetype count)
{
    QList<qint16> words;
    for (qsizetype n = 0; n < count; ++n) {
        words.append(m_next);
        m_next = m_next == 30000 ? qint16(1) : qint16(m_next + 1);
    }
    const auto size = ssize_t(count * qsizetype(sizeof(qint16)));
    QCOMPARE(write(m_pipe, words.constData(), size_t(size)), size);
    m_said += words;
}
