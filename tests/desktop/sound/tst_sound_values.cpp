#include "desktop/sound/HeardSound.h"
#include "platform/linux/sound/InputSources.h"
#include "platform/linux/sound/LevelMeter.h"
#include "platform/linux/sound/WavFile.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <csignal>

#include <sys/resource.h>

namespace {

QByteArray pcmOf(const QList<qint16> &samples)
{
    return QByteArray(reinterpret_cast<const char *>(samples.constData()), samples.size() * 2);
}

QList<qint16> sine(double amplitude)
{
    QList<qint16> samples;
    for (int n = 0; n < 1600; ++n)
        samples.append(qint16(std::lround(amplitude * 32767 * std::sin(2 * M_PI * 440 * n / 16000))));
    return samples;
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
        const QString path = folder.filePath(QStringLiteral("a.wav"));
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

    void aFullDiskLeavesAValidFile_data()
    {
        QTest::addColumn<int>("room");
        QTest::addColumn<int>("kept");
        QTest::newRow("between two samples") << 44 + 5000 << 5000;
        QTest::newRow("in the middle of a sample") << 44 + 5001 << 5000;
        QTest::newRow("after several writes") << 44 + 40001 << 40000;
    }

    void aFullDiskLeavesAValidFile()
    {
        QFETCH(int, room);
        QFETCH(int, kept);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("a.wav"));
        std::expected<WavFile, QString> file = WavFile::create(path, 16000);
        {
            const FullDisk disk{rlim_t(room)};
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

    void aFileThatCannotBeMadeSaysWhy()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("a.wav"));
        QVERIFY(!WavFile::create(folder.filePath(QStringLiteral("none/a.wav")), 16000));
        QFile other(path);
        QVERIFY(other.open(QFile::WriteOnly));
        QCOMPARE(WavFile::create(path, 16000).error(), qt_error_string(EEXIST));
        const FullDisk disk{20};
        const QString crowded = folder.filePath(QStringLiteral("b.wav"));
        QCOMPARE(WavFile::create(crowded, 16000).error(), qt_error_string(ENOSPC));
        QVERIFY(!QFile::exists(crowded));
    }

    void theMeterReadsPower_data()
    {
        QTest::addColumn<QList<qint16>>("samples");
        QTest::addColumn<double>("power");
        QTest::newRow("digital silence") << QList<qint16>(100, 0) << -120.0;
        QTest::newRow("square at full scale") << QList<qint16>(100, -32768) << 0.0;
        QTest::newRow("square at half scale") << QList<qint16>(100, 16384) << -6.02;
        QTest::newRow("sine at full scale") << sine(1) << -3.01;
        QTest::newRow("sine at a tenth") << sine(0.1) << -23.01;
        QTest::newRow("the least there is") << QList<qint16>{1, -1, 1, -1} << -90.31;
    }

    void theMeterReadsPower()
    {
        QFETCH(QList<qint16>, samples);
        QFETCH(double, power);
        LevelMeter meter;
        meter.add(pcmOf(samples));
        meter.read();
        QVERIFY2(std::abs(meter.power() - power) < 0.02, qPrintable(QString::number(meter.power())));
    }

    void eachReadingIsOfWhatIsNew()
    {
        LevelMeter meter;
        meter.add(pcmOf(QList<qint16>(100, 16384)));
        meter.read();
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
        QTest::newRow("only a monitor")
            << QByteArray("a.monitor") << QByteArray("a.monitor") << false << QByteArray();
        QTest::newRow("a real default")
            << QByteArray("a.monitor mic cam") << QByteArray("cam") << true << QByteArray();
        QTest::newRow("a monitor by default")
            << QByteArray("a.monitor mic cam") << QByteArray("a.monitor") << true << QByteArray("mic");
        QTest::newRow("no default") << QByteArray("a.monitor mic") << QByteArray("") << true
                                    << QByteArray("mic");
        QTest::newRow("a default not listed yet")
            << QByteArray("a.monitor mic") << QByteArray("usb") << true << QByteArray();
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
