#include "desktop/sound/AudioServer.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseSoundPlayer.h"

#include <QProcess>
#include <QTest>

namespace {

const QString nullSink = QStringLiteral("module-null-sink sink_name=speakers rate=48000 channels=1 norewinds=1");

/// What comes out of the loudspeakers.
class Loudspeakers
{
public:
    Loudspeakers()
    {
        m_ear.start(QStringLiteral("parec"), {QStringLiteral("--device=speakers.monitor"), QStringLiteral("--raw"),
                                              QStringLiteral("--format=s16le"), QStringLiteral("--rate=48000"),
                                              QStringLiteral("--channels=1"), QStringLiteral("--latency-msec=20")});
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
            player.play(QStringLiteral("Tink"));
            QTRY_VERIFY_WITH_TIMEOUT(!loudspeakers.areSilent(), 5000);
        }
        server.kill();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::absent, 5000);
        player.play(QStringLiteral("Tink"));
        server.start();
        QTRY_COMPARE_WITH_TIMEOUT(connection.state(), PulseConnection::State::ready, 5000);
        Loudspeakers loudspeakers;
        QVERIFY(loudspeakers.areSilent());
        player.play(QStringLiteral("Tink"));
        QTRY_VERIFY_WITH_TIMEOUT(!loudspeakers.areSilent(), 5000);
    }
};

QTEST_GUILESS_MAIN(SoundsTest)
#include "tst_sounds.moc"
