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

    void foldersFollowTheEnvironment()
    {
        m_environment.insert(u"XDG_CONFIG_HOME"_s, u"c"_s); // relative: ignored
        m_environment.insert(u"XDG_DATA_HOME"_s, u"./d"_s);
        QCOMPARE(XdgFolders({}, m_environment).configuration(), at(u"home/.config/sayvane"_s));
        QCOMPARE(XdgFolders({}, m_environment).applicationSupport(), at(u"home/.local/share"_s));
        QVERIFY(!QFile::exists(at(u"home/.config/sayvane"_s))); // only named, not made
        m_environment.insert(u"XDG_CONFIG_HOME"_s, u"/c"_s);
        m_environment.insert(u"XDG_DATA_HOME"_s, u"/d"_s);
        const XdgFolders dots(u"../../x"_s, m_environment);
        QCOMPARE(dots.configuration(), u"/c/sayvane-..%2F..%2Fx"_s);
        QCOMPARE(dots.applicationSupport(), u"/d/sayvane-..%2F..%2Fx"_s);
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
        QCOMPARE(chmod(QFile::encodeName(usualTemporary()).constData(), 0777), 0); // and is closed again
        QCOMPARE(XdgFolders({}, m_environment).temporary(), usualTemporary());
        QVERIFY(isPrivate(usualTemporary()));
    }

    void somethingPlantedInItsPlaceIsNotUsed()
    {
        const QString trap = at(u"trap"_s);
        QVERIFY(QDir().mkdir(trap));
        const auto isRefused = [&] {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"is not ours alone"_s));
            const XdgFolders folders({}, m_environment);
            const QString chosen = folders.temporary();
            return chosen.startsWith(usualTemporary() + u'-') && isPrivate(chosen) && folders.temporary() == chosen &&
                   QDir(trap).isEmpty();
        };
        QVERIFY(QFile::link(trap, usualTemporary()));
        QVERIFY(isRefused());
        if (geteuid() != 0)
            QSKIP("Only root can make a folder of another user.");
        QVERIFY(QFile::remove(usualTemporary()));
        QVERIFY(QDir().mkdir(usualTemporary()));
        QCOMPARE(chown(QFile::encodeName(usualTemporary()).constData(), 65534, 65534), 0);
        QVERIFY(isRefused());
    }
};

QTEST_GUILESS_MAIN(XdgFoldersTest)
#include "XdgFoldersTest.moc"
