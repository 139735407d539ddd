#include "desktop/sound/HeardSound.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseMicrophone.h"
#include "machine/sound/WavFile.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <csignal>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray pcmOf(const QList<qint16> &samples)
{
    return QByteArray(reinterpret_cast<const char *>(samples.constData()), samples.size() * 2);
}

/// No file of this process can grow beyond a size, as if the disk were full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit full{size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before = {};
};

} // namespace

class SoundValuesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aGrowingFileIsAlwaysReadable()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"a.wav"_s);
        std::expected<WavFile, QString> file = WavFile::create(path, 16000);
        QVERIFY(file.has_value());
        constexpr qsizetype step = 3777; // samples, a little less than a quarter of a second
        for (qsizetype said = 0; said < 80000; said += step) {
            const HeardSound sound = HeardSound::read(path);
            QCOMPARE(sound.sampleRate, 16000);
            QVERIFY(sound.samples.size() <= said);
            QVERIFY(sound.samples.size() > said - 8000);
            QVERIFY(file->append(QByteArray(step * 2, 'x')).has_value());
        }
        file->close();
        const qsizetype all = HeardSound::read(path).samples.size();
        QCOMPARE(all % step, 0);
        QVERIFY(all >= 80000);
        QCOMPARE(QFileInfo(path).size(), 44 + 2 * all);
        QCOMPARE(QFileInfo(path).permissions() & ~(QFile::ReadUser | QFile::WriteUser),
                 QFile::ReadOwner | QFile::WriteOwner);
    }

    void aFullDiskLeavesAValidFile()
    {
        constexpr int kept = 40000;
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"a.wav"_s);
        std::expected<WavFile, QString> file = WavFile::create(path, 16000);
        {
            const FullDisk disk{44 + kept + 1}; // in the middle of a sample
            std::expected<void, QString> written;
            for (int n = 0; n < 20 && written; ++n)
                written = file->append(QByteArray(4000, 'x'));
            QVERIFY(!written);
            QVERIFY(!written.error().isEmpty());
        }
        QVERIFY(!file->append(QByteArray(2, 'x'))); // no gap, then more
        QCOMPARE(HeardSound::read(path).samples.size(), kept / 2);
        QCOMPARE(QFileInfo(path).size(), 44 + kept);
    }

    void theMeterReadsPower()
    {
        LevelMeter meter;
        meter.add(pcmOf(QList<qint16>(100, 16384)));
        meter.read();
        QVERIFY2(std::abs(meter.power() + 6.02) < 0.02, qPrintable(QString::number(meter.power())));
        meter.add(pcmOf(QList<qint16>(100, -32768)));
        meter.read();
        QCOMPARE(meter.power(), 0.0);
        meter.read(); // nothing new
        QCOMPARE(meter.power(), 0.0);
        meter.add(pcmOf(QList<qint16>(100, 0)));
        meter.read();
        QCOMPARE(meter.power(), LevelMeter::silence);
    }

    void theSourceIsChosen_data()
    {
        QTest::addColumn<QByteArray>("sources"); // in the order of their indices
        QTest::addColumn<QByteArray>("byDefault");
        QTest::addColumn<bool>("hasInput");
        QTest::addColumn<QByteArray>("choice");
        QTest::newRow("none") << QByteArray("") << QByteArray("") << false << QByteArray();
        QTest::newRow("a real default") << QByteArray("a.monitor mic cam") << QByteArray("cam") << true << QByteArray();
        QTest::newRow("a monitor by default")
            << QByteArray("a.monitor mic cam") << QByteArray("a.monitor") << true << QByteArray("mic");
    }

    void theSourceIsChosen()
    {
        QFETCH(QByteArray, sources);
        QFETCH(QByteArray, byDefault);
        InputSources inputs;
        uint32_t index = 0;
        for (const QByteArray &name : sources.split(' ')) {
            if (!name.isEmpty())
                inputs.insert(++index, name, name.endsWith(".monitor"));
        }
        inputs.setDefault(byDefault);
        QTEST(inputs.hasInput(), "hasInput");
        QTEST(inputs.choice(), "choice");
    }
};

QTEST_GUILESS_MAIN(SoundValuesTest)
#include "tst_sound_values.moc"
