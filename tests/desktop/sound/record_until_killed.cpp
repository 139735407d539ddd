#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseMicrophone.h"

#include <QCoreApplication>
#include <QFile>

/// Records into the file it is given for as long as it lives.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    PulseConnection connection;
    PulseMicrophone microphone(connection);
    const auto recording = microphone.open(QFile::decodeName(argv[1]), {});
    if (!recording)
        return 1;
    (*recording)->record([](bool begun) {
        if (!begun)
            QCoreApplication::exit(1);
    });
    return QCoreApplication::exec();
}
