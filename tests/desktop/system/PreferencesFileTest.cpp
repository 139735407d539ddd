#include "machine/desktop/PreferencesFile.h"
#include "machine/desktop/SystemClock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const char *failing = ""; // the call of the system that a failing disk refuses

int result(const char *call, auto... arguments)
{
    if (qstrcmp(call, failing) == 0) {
        errno = EIO;
        return -1;
    }
    return reinterpret_cast<int (*)(decltype(arguments)...)>(dlsym(RTLD_NEXT, call))(arguments...);
}

} // namespace

// In the place of the C library's, also for the libraries that the test uses.
extern "C" int fdatasync(int file)
{
    return result("fdatasync", file);
}
extern "C" int fsync(int file)
{
    return result("fsync", file);
}
extern "C" int rename(const char *from, const char *to) noexcept
{
    return result("rename", from, to);
}

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

    void valuesComeBackAtTheNextStart()
    {
        for (const QJsonValue &value : {QJsonValue(u"gr\u00fc\u00df \U0001F44D \"x\"\n"_s),
                                        QJsonValue(qint64(9007199254740993)), QJsonValue(1.0 / 3)}) {
            PreferencesFile(m_folder, m_clock).setValue(u"key"_s, value);
            const PreferencesFile again(m_folder, m_clock);
            QCOMPARE(again.value(u"key"_s), value);
            QCOMPARE(again.value(u"other"_s), QJsonValue(QJsonValue::Undefined));
        }
        // For the user alone.
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

    void aDamagedFileIsKeptAside()
    {
        QVERIFY(QDir().mkpath(m_folder));
        int damages = 0;
        for (auto [bytes, kept] :
             {std::pair(QByteArray(""), QJsonObject()),
              {"{\"a\": 1, \"b\": ", {}},
              {R"({"a":[1],"b":"x","unknown":2.5,"c":{},"d":null})", {{u"b"_s, u"x"_s}, {u"unknown"_s, 2.5}}}}) {
            write(m_path, bytes);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"was damaged and is kept as"_s));
            PreferencesFile file(m_folder, m_clock);
            QCOMPARE(read(m_path), bytes); // until it is asked for; a command may have no right to it
            file.value(u"any"_s);
            QCOMPARE(aside().size(), ++damages); // also where they come in one second
            QVERIFY(std::ranges::any_of(aside(),
                                        [&](const QString &name) { return read(m_folder + u'/' + name) == bytes; }));
            QCOMPARE(stored(), kept);
            file.setValue(u"new"_s, true);
            kept.insert(u"new"_s, true);
            QCOMPARE(stored(), kept);
        }
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

    void aFailingDiskKeepsTheOldFile()
    {
        const QJsonValue longer(u"a longer text than fits"_s);
        for (const auto &[call, replaces] :
             {std::pair("", false), {"fdatasync", false}, {"rename", false}, {"fsync", true}}) {
            PreferencesFile file(m_folder, m_clock);
            file.setValue(u"key"_s, u"old"_s);
            const QByteArray before = read(m_path);
            // Files cannot grow beyond this, as on a full disk.
            const auto usual = std::signal(SIGXFSZ, SIG_IGN);
            rlimit limit{};
            getrlimit(RLIMIT_FSIZE, &limit);
            const rlimit tight{16, limit.rlim_max};
            if (*call == '\0')
                setrlimit(RLIMIT_FSIZE, &tight);
            failing = call;
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"cannot be written"_s));
            file.setValue(u"key"_s, longer);
            failing = "";
            setrlimit(RLIMIT_FSIZE, &limit);
            std::signal(SIGXFSZ, usual);

            QCOMPARE(read(m_path) != before, replaces);
            QCOMPARE(QDir(m_folder).entryList(QDir::Files), QStringList{u"preferences.json"_s});
            QCOMPARE(file.value(u"key"_s), longer);
            file.setValue(u"other"_s, QString::fromLatin1(call)); // the disk is well again: everything is written
            QCOMPARE(stored(), (QJsonObject{{u"key"_s, longer}, {u"other"_s, QString::fromLatin1(call)}}));
        }
    }

    void aLinkStaysALink()
    {
        const QString target = m_root->filePath(u"dotfiles.json"_s);
        QVERIFY(QDir().mkpath(m_folder));
        QVERIFY(QFile::link(target, m_path));
        for (const bool isDamaged : {false, true}) {
            write(target, isDamaged ? "{\"a\":1," : "{\"a\":1}");
            if (isDamaged)
                QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"was damaged"_s));
            PreferencesFile(m_folder, m_clock).setValue(u"b"_s, 2);
            QVERIFY(QFileInfo(m_path).isSymLink());
            QVERIFY(!QFileInfo(target).isSymLink());
            QCOMPARE(stored().value(u"b"_s), QJsonValue(2));
            QCOMPARE(stored().contains(u"a"_s), !isDamaged);
            QCOMPARE(aside().isEmpty(), !isDamaged);
        }
    }
};

QTEST_GUILESS_MAIN(PreferencesFileTest)
#include "PreferencesFileTest.moc"
