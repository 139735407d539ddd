#include "desktop/sound/AudioServer.h"
#include "desktop/sound/Awaited.h"
#include "desktop/sound/HeardSound.h"
#include "desktop/sound/PipeVoice.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseMicrophone.h"

#include <QFile>
#include <QLocalServer>
#include <QTcpServer>
#include <QTest>

using namespace Qt::StringLiterals;

using Authorization = Microphone::Authorization;

namespace {

const QString nullSink = u"module-null-sink sink_name=speaker norewinds=1"_s;

QStringList load(const QString &module)
{
    return QStringList{u"load-module"_s} << module.split(u' ');
}

void writeCookie(const QString &path, char fill)
{
    QFile cookie(path);
    QVERIFY(cookie.open(QFile::WriteOnly));
    cookie.write(QByteArray(256, fill));
}

} // namespace

class MicrophoneTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { qunsetenv("PULSE_SERVER"); }

    /// Nobody is there to refuse us: the answer is that there is no microphone.
    void withoutAServerThereIsNoMicrophone_data()
    {
        QTest::addColumn<QByteArray>("server");
        QTest::newRow("no socket") << QByteArray("unix:/nonexistent/native");
        QTest::newRow("no answer") << QByteArray();
    }

    void withoutAServerThereIsNoMicrophone()
    {
        QFETCH(QByteArray, server);
        const QTemporaryDir folder;
        QLocalServer mute; // takes connections and says nothing
        QVERIFY(mute.listen(folder.filePath(u"native"_s)));
        qputenv("PULSE_SERVER", server.isEmpty() ? "unix:" + mute.fullServerName().toUtf8() : server);
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(!Awaited::inputDevice(microphone));
        QCOMPARE(microphone.authorization(), Authorization::authorized);
        const auto recording = microphone.open(folder.filePath(u"a.wav"_s), {});
        QVERIFY(!Awaited::record(**recording));
        QVERIFY(!(*recording)->isRecording() && !(*recording)->loss());
    }

    void microphonesComeAndGo()
    {
        const AudioServer server({nullSink});
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(!Awaited::inputDevice(microphone)); // a monitor is none
        QCOMPARE(microphone.authorization(), Authorization::authorized);
        const QString pipe = server.path(u"voice"_s);
        server.control(load(PipeVoice::microphone(u"mic"_s, pipe)));
        QTRY_VERIFY_WITH_TIMEOUT(Awaited::inputDevice(microphone), 5000);
        server.control({u"unload-module"_s, u"module-pipe-source"_s});
        QTRY_VERIFY_WITH_TIMEOUT(!Awaited::inputDevice(microphone), 5000);
    }

    void aRealMicrophoneIsPreferredToAMonitor()
    {
        AudioServer server({nullSink});
        const QString pipe = server.path(u"voice"_s);
        server.control(load(PipeVoice::microphone(u"mic"_s, pipe)));
        server.control({u"set-default-source"_s, u"speaker.monitor"_s});
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(Awaited::inputDevice(microphone));
        const QString path = server.path(u"a.wav"_s);
        const auto recording = microphone.open(path, {});
        QVERIFY(Awaited::record(**recording));
        PipeVoice voice(pipe);
        voice.say(3200);
        QVERIFY(Awaited::stop(**recording));
        QCOMPARE(HeardSound::read(path).samples, voice.said());
    }

    void aBusyMicrophoneRefuses()
    {
        const AudioServer server({});
        server.control(load(PipeVoice::microphone(u"mic"_s, server.path(u"voice"_s))));
        server.control({u"suspend-source"_s, u"mic"_s, u"1"_s});
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(Awaited::inputDevice(microphone));
        const auto recording = microphone.open(server.path(u"a.wav"_s), {});
        QVERIFY(!Awaited::record(**recording));
        server.control({u"suspend-source"_s, u"mic"_s, u"0"_s});
        QVERIFY(Awaited::record(**recording));
        QVERIFY((*recording)->isRecording());
    }

    void aServerThatRefusesUsDeniesTheMicrophone()
    {
        const AudioServer server({nullSink});
        const QString theirs = server.path(u"theirs"_s);
        const QString ours = server.path(u"ours"_s);
        writeCookie(theirs, 'a');
        writeCookie(ours, 'b');
        QTcpServer free;
        QVERIFY(free.listen(QHostAddress::LocalHost));
        const QString port = QString::number(free.serverPort());
        free.close();
        server.control(load(u"module-native-protocol-tcp listen=127.0.0.1 port=%1 auth-cookie=%2"_s.arg(port, theirs)));
        qputenv("PULSE_SERVER", "tcp:127.0.0.1:" + port.toLatin1());
        qputenv("PULSE_COOKIE", QFile::encodeName(ours));
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(!Awaited::inputDevice(microphone));
        QCOMPARE(microphone.authorization(), Authorization::denied);
        writeCookie(ours, 'a');
        microphone.requestAccess();
        QTRY_COMPARE_WITH_TIMEOUT(microphone.authorization(), Authorization::authorized, 5000);
        qunsetenv("PULSE_COOKIE");
    }

    void theConnectionComesBackWithTheServer()
    {
        const QTemporaryDir folder;
        const QString pipe = folder.filePath(u"voice"_s);
        AudioServer server({PipeVoice::microphone(u"mic"_s, pipe)});
        PulseConnection connection;
        PulseMicrophone microphone(connection);
        QVERIFY(Awaited::inputDevice(microphone));
        server.kill();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::absent, 5000);
        QVERIFY(!Awaited::inputDevice(microphone));
        QCOMPARE(microphone.authorization(), Authorization::authorized);
        QFile::remove(pipe); // the dead server's
        server.start();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::ready, 5000); // unasked

        const QString path = server.path(u"a.wav"_s);
        const auto recording = microphone.open(path, {});
        QVERIFY(Awaited::record(**recording));
        PipeVoice voice(pipe);
        voice.say(1600);
        QVERIFY(Awaited::stop(**recording));
        QCOMPARE(HeardSound::read(path).samples, voice.said());
    }
};

QTEST_GUILESS_MAIN(MicrophoneTest)
#include "tst_microphone.moc"
