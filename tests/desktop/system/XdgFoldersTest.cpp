#include "machine/desktop/XdgFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class XdgFoldersTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_root;
    QProcessEnvironment m_environment;

    QString at(const QString &name) const { return m_root->filePath(name); }
    QString usualTemporary() const { return u"%1/sayvane-%2"_s.arg(at(u"tmp"_s)).arg(geteuid()); }

    static bool isPrivate(const QString &folder)
    {
        struct stat facts = {};
        return lstat(QFile::encodeName(folder).constData(), &facts) == 0 && S_ISDIR(facts.st_mode) &&
               facts.st_uid == geteuid() && (facts.st_mode & 0777) == 0700;
    }

private Q_SLOTS:
    void init()
    {
        m_root = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(m_root->path()).mkpath(u"tmp"_s));
        m_environment = {};
        m_environment.insert(u"HOME"_s, at(u"home"_s));
        m_environment.insert(u"TMPDIR"_s, at(u"tmp"_s));
    }

    void foldersFollowTheEnvironment_data()
    {
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QString>("configHome");
        QTest::addColumn<QString>("dataHome");
        QTest::addColumn<QString>("configuration");
        QTest::addColumn<QString>("data");
        QTest::newRow("relative is ignored")
            << u""_s << u"c"_s << u"./d"_s << u"HOME/.config/sayvane"_s << u"HOME/.local/share"_s;
        QTest::newRow("profile of dots") << u"../../x"_s << u"/c"_s << u"/d"_s << u"/c/sayvane-..%2F..%2Fx"_s
                                         << u"/d/sayvane-..%2F..%2Fx"_s;
    }

    void foldersFollowTheEnvironment()
    {
        QFETCH(QString, profile);
        QFETCH(QString, configHome);
        QFETCH(QString, dataHome);
        QFETCH(QString, configuration);
        QFETCH(QString, data);
        m_environment.insert(u"XDG_CONFIG_HOME"_s, configHome);
        m_environment.insert(u"XDG_DATA_HOME"_s, dataHome);
        const XdgFolders folders(profile, m_environment);
        QCOMPARE(folders.configuration(), configuration.replace(u"HOME"_s, at(u"home"_s)));
        QCOMPARE(folders.applicationSupport(), data.replace(u"HOME"_s, at(u"home"_s)));
        QVERIFY(!QFile::exists(folders.configuration())); // only named, not made
    }

    void theTemporaryFolderIsPrivateAndComesBack()
    {
        const XdgFolders folders({}, m_environment);
        QCOMPARE(folders.temporary(), usualTemporary());
        QVERIFY(isPrivate(usualTemporary()));
        QVERIFY(QDir().rmdir(usualTemporary())); // as a cleaner would
        QCOMPARE(folders.temporary(), usualTemporary());
        QVERIFY(isPrivate(usualTemporary()));
        QVERIFY(XdgFolders(u"trial"_s, m_environment).temporary() != usualTemporary());
    }

    void anOpenFolderOfOursIsClosed()
    {
        QVERIFY(QDir().mkdir(usualTemporary()));
        QCOMPARE(chmod(QFile::encodeName(usualTemporary()).constData(), 0777), 0);
        QCOMPARE(XdgFolders({}, m_environment).temporary(), usualTemporary());
        QVERIFY(isPrivate(usualTemporary()));
    }

    void somethingPlantedInItsPlaceIsNotUsed_data()
    {
        QTest::addColumn<QString>("what");
        for (const QString &what : {u"link to a folder"_s, u"folder of another user"_s})
            QTest::newRow(qPrintable(what)) << what;
    }

    void somethingPlantedInItsPlaceIsNotUsed()
    {
        QFETCH(QString, what);
        const QString trap = at(u"trap"_s);
        if (what == u"folder of another user") {
            if (geteuid() != 0)
                QSKIP("Only root can make a folder of another user.");
            QVERIFY(QDir().mkdir(usualTemporary()));
            QCOMPARE(chown(QFile::encodeName(usualTemporary()).constData(), 65534, 65534), 0);
        } else {
            QVERIFY(QDir().mkdir(trap));
            QVERIFY(QFile::link(trap, usualTemporary()));
        }
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"is not ours alone"_s));
        const XdgFolders folders({}, m_environment);
        const QString chosen = folders.temporary();
        QVERIFY(chosen.startsWith(usualTemporary() + u'-'));
        QVERIFY(isPrivate(chosen));
        QCOMPARE(folders.temporary(), chosen);
        QVERIFY(QDir(trap).isEmpty());
    }
};

QTEST_GUILESS_MAIN(XdgFoldersTest)
#include "XdgFoldersTest.moc"
