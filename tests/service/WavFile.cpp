#include "WavFile.h"

#include <QtEndian>

namespace {

template <typename T>
QByteArray number(T value)
{
    QByteArray bytes(sizeof value, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

} // namespace

QByteArray WavFile::bytes() const
{
    const auto length = declaredLength < 0 ? samples.size() : declaredLength;
    const quint16 frame = channels * bits / 8;
    const QByteArray body = "WAVEfmt " + number<quint32>(16) + number(format) + number(channels) + number(rate) +
                            number<quint32>(rate * frame) + number(frame) + number(bits) + extraChunk + "data" +
                            number(static_cast<quint32>(length)) + samples;
    return "RIFF" + number(static_cast<quint32>(body.size())) + body;
}
