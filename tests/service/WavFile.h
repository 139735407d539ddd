#pragma once

#include <QByteArray>
/// WAV files as recorders write them, and as they should not.
struct WavFile
{
    quint16 format = 1;
    quint16 channels = 1;
    quint32 rate = 16000;
    quint16 bits = 16;
    QByteArray samples;
    QByteArray extraChunk;      ///< stands before the data
    qint64 declaredLength = -1; ///< -1: the true one

    static QByteArray silence(int seconds)
    {
        return WavFile{.samples = QByteArray(qsizetype{32000} * seconds, '\0')}.bytes();
    }
    QByteArray bytes() const;
};
