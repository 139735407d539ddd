#pragma once

#include <QDateTime>
#include <QString>

/// A recording that no dictation came to an end with.
struct LeftRecording
{
    QString id; ///< as its file is named
    QString path;
    QDateTime date;     ///< when its last sound was heard, UTC
    double seconds = 0; ///< how much was heard
};
