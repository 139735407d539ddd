#include "platform/linux/sound/PulseConnection.h"
#include "platform/linux/sound/PulseMicrophone.h"

#include <QFile>

#include <unistd.h>

/// Records into the file it is given for as long as it lives.
int main(int, char **arguments)
{
    PulseConnection connection;
    PulseMicrophone microphone(connection);
    if (!microphone.hasInputDevice())
        return 1;
    const auto recording = microphone.open(QFile::decodeName(arguments[1]), {});
    if (!recording || !(*recording)->record())
        return 1;
    for (;;)
        pause();
}
