#include "desktop/sound/AudioServer.h"
#include "desktop/sound/HeardSound.h"
#include "platform/linux/sound/PulseConnection.h"
#include "platform/linux/sound/PulseSoundPlayer.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

const QString nullSink =
    QStringLiteral("module-null-sink sink_name=speakers rate=48000 channels=1 norewinds=1");

/// What comes out of the loudspeakers.
class Loudspeakers
{
public:
    Loudspeakers()
    {
        m_ear.start(QStringLiteral("parec"),
                    {QStringLiteral("--device=speakers.monitor"), QStringLiteral("--raw"),
                     QStringLiteral("--format=s16le"), QStringLiteral("--rate=48000"),
                     QStringLiteral("--channels=1"), QStringLiteral("--latency-msec=20")});
        QTRY_VERIFY_WITH_TIMEOUT(!heard().isEmpty(), 10000);
    }

    ~Loudspeakers()
    {
        m_ear.kill();
        m_ear.waitForFinished();
    }

    const QList<qint16> &heard()
    {
        const QByteArray bytes = m_ear.readAllStandardOutput();
        for (qsizetype at = 0; at + 2 <= bytes.size(); at += 2)
            m_heard.append(qFromLittleEndian<qint16>(bytes.constData() + at));
        return m_heard;
    }

    /// From the first sample that is not silence to the last.
    QList<qint16> sound()
    {
        const auto isSound = [](qint16 sample) { return std::abs(sample) > 8; };
        const QList<qint16> all = heard();
        const auto first = std::ranges::find_if(all, isSound);
        const auto last = std::find_if(all.rbegin(), all.rend(), isSound);
        return first == all.end() ? QList<qint16>() : QList<qint16>(first, last.base());
    }

    bool isSilentFor(qsizetype samples)
    {
        const QList<qint16> &all = heard();
        return all.size() >= samples &&
               std::all_of(all.end() - samples, all.end(), [](qint16 s) { return std::abs(s) <= 8; });
    }

private:
    QProcess m_ear;
    QList<qint16> m_heard;
};

} // namespace

class SoundsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachSoundIsHeard_data()
    {
        QTest::addColumn<int>("leastMs");
        QTest::addColumn<int>("mostMs");
        QTest::newRow("Pop") << 60 << 100;
        QTest::newRow("Tink") << 60 << 200;
        QTest::newRow("Funk") << 200 << 350;
        QTest::newRow("Basso") << 200 << 350;
    }

    void eachSoundIsHeard()
    {
        QFETCH(int, leastMs);
        QFETCH(int, mostMs);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        const HeardSound file = HeardSound::read(QStringLiteral(SOUNDS "/%1.wav").arg(name));
        QCOMPARE(file.sampleRate, 48000);
        const AudioServer server({nullSink});
        PulseConnection connection;
        QCOMPARE(connection.settledState(), PulseConnection::State::ready);
        PulseSoundPlayer player(connection, QStringLiteral(SOUNDS));
        for (int time = 0; time < 2; ++time) { // handed over, then from the server's memory
            Loudspeakers loudspeakers;
            player.play(name);
            QTRY_VERIFY_WITH_TIMEOUT(!loudspeakers.sound().isEmpty() && loudspeakers.isSilentFor(9600), 5000);
            const HeardSound heard{48000, 1, 0, loudspeakers.sound()};
            const qsizetype ms = heard.samples.size() / 48;
            QVERIFY2(ms >= leastMs && ms <= mostMs, qPrintable(QString::number(ms)));
            const auto energy = [](const HeardSound &sound) {
                return sound.level() + 10 * std::log10(double(sound.samples.size()));
            };
            QVERIFY(std::abs(energy(heard) - energy(file)) < 0.5);
            QVERIFY(file.samples.first() == 0 && std::abs(file.samples.last()) <= 1); // no click
        }
    }

    void whatCannotBePlayedIsSilent()
    {
        const AudioServer server({nullSink});
        PulseConnection connection;
        QCOMPARE(connection.settledState(), PulseConnection::State::ready);
        Loudspeakers loudspeakers;
        PulseSoundPlayer bare(connection, QStringLiteral("/nonexistent"));
        bare.play(QStringLiteral("Pop"));
        const QString stranger = server.path(QStringLiteral("Glass.wav"));
        QVERIFY(QFile::copy(QStringLiteral(SOUNDS "/Pop.wav"), stranger));
        PulseSoundPlayer player(connection, QFileInfo(stranger).path());
        player.play(QStringLiteral("Glass"));
        const qsizetype before = loudspeakers.heard().size();
        QTRY_VERIFY_WITH_TIMEOUT(loudspeakers.heard().size() > before + 12000, 5000);
        QVERIFY(loudspeakers.sound().isEmpty());
    }

    void aRestartedServerPlaysOn()
    {
        AudioServer server({nullSink});
        PulseConnection connection;
        QCOMPARE(connection.settledState(), PulseConnection::State::ready);
        PulseSoundPlayer player(connection, QStringLiteral(SOUNDS));
        {
            Loudspeakers loudspeakers;
            player.play(QStringLiteral("Tink"));
            QTRY_VERIFY_WITH_TIMEOUT(!loudspeakers.sound().isEmpty(), 5000);
        }
        server.kill();
        QTRY_COMPARE_WITH_TIMEOUT(connection.settledState(), PulseConnection::State::absent, 5000);
        player.play(QStringLiteral("Tink"));
        server.start();
        QCOMPARE(connection.settledState(), PulseConnection::State::ready);
        Loudspeakers loudspeakers;
        player.play(QStringLiteral("Tink"));
        QTRY_VERIFY_WITH_TIMEOUT(!loudspeakers.sound().isEmpty(), 5000);
    }
};

QTEST_GUILESS_MAIN(SoundsTest)
#include "tst_sounds.moc"
