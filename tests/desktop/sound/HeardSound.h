#pragma once

#include <QList>
#include <QString>

/// A sound file as an independent reader sees it, and what an ear would say about it.
struct HeardSound
{
    int sampleRate = 0;
    int channels = 0;
    int format = 0; // libsndfile's SF_FORMAT_ bits
    QList<qint16> samples;

    /// The sample rate is 0 when it is no sound file, or when its header does not mean what is there: a
    /// lenient reader would mend that in silence.
    static HeardSound read(const QString &path);

    /// The root mean square in dBFS.
    double level() const;

    /// Of a pure tone, in hertz: counted by its upward zero crossings.
    double pitch() const;
};
