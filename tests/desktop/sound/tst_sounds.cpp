#include "desktop/sound/AudioServer.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseSoundPlayer.h"

#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString nullSink = u"module-null-sink sink_name=speakers rate=48000 channels=1 norewinds=1"_s;

/// What comes out of the loudspeakers.
class Loudspeakers
{
public:
    Loudspeakers()
    {
        m_ear.start(u"parec"_s, {u"--device=speakers.monitor"_s, u"--raw"_s, u"--format=s16le"_s, u"--rate=48000"_s,
                                 u"--channels=1"_s, u"--latency-msec=20"_s});
        QTRY_VERIFY_WITH_TIMEOUT(!heard().isEmpty(), 10000);
    }

    ~Loudspeakers()
    {
        m_ear.kill();
        m_ear.waitForFinished();
    }

    QByteArray heard()
    {
        m_heard += m_ear.readAllStandardOutput();
        return m_heard;
    }

    bool areSilent() { return heard().count('\0') == m_heard.size(); }

private:
    QProcess m_ear;
    QByteArray m_heard;
};

} // namespace

class SoundsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRestartedServerPlaysOn()
    {
        AudioServer server({nullSink});
        PulseConnection connection;
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::ready, 5000);
        PulseSoundPlayer player(connection, QStringLiteral(SOUNDS));
        {
            Loudspeakers loudspeakers;
            player.play(u"Tink"_s);
            QTRY_VERIFY_WITH_TIMEOUT(!loudspeakers.areSilent(), 5000);
        }
        server.kill();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::absent, 5000);
        player.play(u"Tink"_s);
        server.start();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::ready, 5000);
        Loudspeakers loudspeakers;
        QVERIFY(loudspeakers.areSilent());
        player.play(u"Tink"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!loudspeakers.areSilent(), 5000);
    }
};

QTEST_GUILESS_MAIN(SoundsTest)
#include "tst_sounds.moc"
