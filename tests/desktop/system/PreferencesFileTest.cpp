#include "platform/linux/system/PreferencesFile.h"
#include "platform/linux/system/SystemClock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class PreferencesFileTest : public QObject
{
    Q_OBJECT

    SystemClock m_clock;
    std::unique_ptr<QTemporaryDir> m_root;
    QString m_folder;
    QString m_path;

    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("The test cannot write its file.");
    }

    QJsonObject stored() const { return QJsonDocument::fromJson(read(m_path)).object(); }
    QStringList aside() const { return QDir(m_folder).entryList({u"preferences-corrupt-*.json"_s}); }

private Q_SLOTS:
    void init()
    {
        m_root = std::make_unique<QTemporaryDir>();
        m_folder = m_root->filePath(u"config/sayvane"_s);
        m_path = m_folder + u"/preferences.json"_s;
    }

    void valuesComeBackAtTheNextStart_data()
    {
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("text") << QJsonValue(u"gr\u00fc\u00df \U0001F44D \"x\"\n"_s);
        QTest::newRow("whole number") << QJsonValue(qint64(9007199254740993));
        QTest::newRow("third") << QJsonValue(1.0 / 3);
    }

    void valuesComeBackAtTheNextStart()
    {
        QFETCH(QJsonValue, value);
        PreferencesFile(m_folder, m_clock).setValue(u"key"_s, value);
        const PreferencesFile again(m_folder, m_clock);
        QCOMPARE(again.value(u"key"_s), value);
        QCOMPARE(again.value(u"other"_s), QJsonValue(QJsonValue::Undefined));
    }

    void filesAndFoldersAreForTheUserAlone()
    {
        PreferencesFile(m_folder, m_clock).setValue(u"key"_s, 1);
        QCOMPARE(QFileInfo(m_path).permissions() & 0x777, QFile::ReadUser | QFile::WriteUser);
        QVERIFY(!(QFileInfo(m_folder).permissions() & 0x077));
    }

    void whatIsNoScalarIsRefused()
    {
        PreferencesFile file(m_folder, m_clock);
        file.setValue(u"key"_s, 1);
        for (const QJsonValue &value : {QJsonValue(QJsonArray{1}), QJsonValue(QJsonObject()), QJsonValue(),
                                        QJsonValue(qQNaN()), QJsonValue(QJsonValue::Undefined)}) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"refused"_s));
            file.setValue(u"key"_s, value);
        }
        QCOMPARE(stored(), (QJsonObject{{u"key"_s, 1}}));
    }

    void aDamagedFileIsKeptAside_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QJsonObject>("kept");
        QTest::newRow("empty") << QByteArray("") << QJsonObject();
        QTest::newRow("cut") << QByteArray("{\"a\": 1, \"b\": ") << QJsonObject();
        QTest::newRow("other values") << QByteArray(R"({"a":[1],"b":"x","unknown":2.5,"c":{},"d":null})")
                                      << QJsonObject{{u"b"_s, u"x"_s}, {u"unknown"_s, 2.5}};
    }

    void aDamagedFileIsKeptAside()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QJsonObject, kept);
        QVERIFY(QDir().mkpath(m_folder));
        write(m_path, bytes);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"was damaged and is kept as"_s));
        PreferencesFile file(m_folder, m_clock);
        QCOMPARE(aside().size(), 1);
        QCOMPARE(read(m_folder + u'/' + aside().first()), bytes);
        QCOMPARE(stored(), kept);
        file.setValue(u"new"_s, true);
        kept.insert(u"new"_s, true);
        QCOMPARE(stored(), kept);
    }

    void twoDamagesInOneSecondAreBothKept()
    {
        QVERIFY(QDir().mkpath(m_folder));
        for (int i = 0; i < 3; ++i) {
            write(m_path, "{" + QByteArray::number(i));
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"was damaged"_s));
            const PreferencesFile file(m_folder, m_clock);
        }
        QCOMPARE(aside().size(), 3);
    }

    void anUnreadableFileIsLeftAlone()
    {
        QVERIFY(QDir().mkpath(m_path)); // a folder in its place
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"cannot be read"_s));
        PreferencesFile file(m_folder, m_clock);
        file.setValue(u"key"_s, 1);
        QCOMPARE(file.value(u"key"_s), QJsonValue(1));
        QVERIFY(QFileInfo(m_path).isDir());
    }

    void aFullDiskKeepsTheOldFile()
    {
        PreferencesFile file(m_folder, m_clock);
        file.setValue(u"key"_s, u"old"_s);
        const QByteArray before = read(m_path);

        // Files cannot grow beyond this, as on a full disk.
        const auto usual = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit tight{16, limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"cannot be written"_s));
        file.setValue(u"key"_s, u"a longer text than fits"_s);
        setrlimit(RLIMIT_FSIZE, &limit);
        std::signal(SIGXFSZ, usual);

        QCOMPARE(read(m_path), before);
        QCOMPARE(QDir(m_folder).entryList(QDir::Files), QStringList{u"preferences.json"_s});
        QCOMPARE(file.value(u"key"_s), QJsonValue(u"a longer text than fits"_s));
        file.setValue(u"other"_s, 1); // there is room again: everything is written
        QCOMPARE(stored(), (QJsonObject{{u"key"_s, u"a longer text than fits"_s}, {u"other"_s, 1}}));
    }

    void aLinkStaysALink_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("good") << QByteArray("{\"a\":1}");
        QTest::newRow("damaged") << QByteArray("{\"a\":1,");
    }

    void aLinkStaysALink()
    {
        QFETCH(QByteArray, bytes);
        const QString target = m_root->filePath(u"dotfiles.json"_s);
        QVERIFY(QDir().mkpath(m_folder));
        write(target, bytes);
        QVERIFY(QFile::link(target, m_path));
        if (bytes.endsWith(','))
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"was damaged"_s));
        PreferencesFile(m_folder, m_clock).setValue(u"b"_s, 2);
        QVERIFY(QFileInfo(m_path).isSymLink());
        QVERIFY(!QFileInfo(target).isSymLink());
        QCOMPARE(stored().value(u"b"_s), QJsonValue(2));
        QCOMPARE(stored().contains(u"a"_s), bytes.endsWith('}'));
        QCOMPARE(aside().isEmpty(), !bytes.endsWith(','));
    }
};

QTEST_GUILESS_MAIN(PreferencesFileTest)
#include "PreferencesFileTest.moc"
