#include "history/HistoryStore.h"

#include "history/HistoryFile.h"
#include "support/FakeMachine.h"
#include "support/LogCapture.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString quarantineName = u"history-corrupt-2026-03-01T091542Z.json"_s;

/// A user's folder of application data, and the store over it.
struct Fixture
{
    VirtualClock clock;
    FakeFolders folders;
    FakeBackground background;
    LogCapture log;

    HistoryStore &store()
    {
        if (!m_store)
            m_store = std::make_unique<HistoryStore>(folders, clock, background);
        return *m_store;
    }
    HistoryStore &reopened()
    {
        m_store.reset();
        return store();
    }
    QString path(const QString &name = u"history.json"_s) const
    {
        return folders.applicationSupport() + u"/Sayvane/"_s + name;
    }
    void write(const QByteArray &bytes, const QString &name = u"history.json"_s) const
    {
        QDir().mkpath(QFileInfo(path()).path());
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }
    QByteArray read(const QString &name = u"history.json"_s) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    QStringList files() const
    {
        return QDir(QFileInfo(path()).path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
    Dictation dictation(const QString &text, std::chrono::seconds ago = 0s) const
    {
        return {.id = QUuid::createUuid(),
                .date = clock.now().addSecs(-ago.count()),
                .durationSeconds = 2,
                .wordCount = Dictation::wordCountOf(text),
                .text = text};
    }
    QStringList texts()
    {
        QStringList texts;
        for (const Dictation &record : store().records())
            texts.append(record.text);
        return texts;
    }

private:
    std::unique_ptr<HistoryStore> m_store;
};

} // namespace

class HistoryStoreTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void mirrorsEveryChange();
    void loadsNewestFirst();
    void keepsTheNewestTwoThousand();
    void anUnreadableHistoryIsMovedAside_data();
    void anUnreadableHistoryIsMovedAside();
    void whatCannotBeMovedAsideIsNotOverwritten();
    void whatCannotBeReadIsNotOverwritten();
    void aFailedWriteKeepsTheOldFileAndIsTriedAgain();
    void aFolderThatCannotBeMadeIsSaidOnce();
    void nobodyElseMayReadTheFile();
    void aSlowDiskLosesNothing_data();
    void aSlowDiskLosesNothing();

private:
    std::unique_ptr<Fixture> m;
};

void HistoryStoreTest::mirrorsEveryChange()
{
    const Dictation a = m->dictation(u"a"_s);
    const Dictation b = m->dictation(u"b"_s);
    QVERIFY(m->store().records().isEmpty() && m->files().isEmpty());
    m->store().append(a);
    m->store().append(b);
    QCOMPARE(m->read(), HistoryFile::encode({b, a}));
    m->store().remove(a);
    QCOMPARE(m->read(), HistoryFile::encode({b}));
    QFile::remove(m->path());
    m->store().remove(a); // no longer there, and the file is written all the same
    QCOMPARE(m->read(), HistoryFile::encode({b}));
    Dictation twin = m->dictation(u"twin"_s);
    twin.id = b.id;
    m->store().append(twin);
    m->store().remove(b); // by its id alone
    QVERIFY(m->store().records().isEmpty());
    m->store().append(a);
    m->store().clear();
    QCOMPARE(m->read(), HistoryFile::encode({}));
    QVERIFY(m->reopened().records().isEmpty());
    QCOMPARE(m->files(), QStringList{u"history.json"_s});
    QCOMPARE(LogCapture::lines(), QStringList());
}

void HistoryStoreTest::loadsNewestFirst()
{
    m->write(
        HistoryFile::encode({m->dictation(u"old"_s, 60s), m->dictation(u"newest"_s, 1s), m->dictation(u"twin 1"_s, 30s),
                             m->dictation(u"oldest"_s, 90s), m->dictation(u"twin 2"_s, 30s)}));
    QCOMPARE(m->texts().join(u','), u"newest,twin 1,twin 2,old,oldest"_s);
    QCOMPARE(m->store().stats().dictationsToday, 5);
}

void HistoryStoreTest::keepsTheNewestTwoThousand()
{
    QList<Dictation> records;
    for (int i = 0; i < 2001; ++i)
        records.append(m->dictation(QString::number(i), std::chrono::seconds(i)));
    m->write(HistoryFile::encode(records));
    QCOMPARE(m->store().records().size(), 2001); // a long file is loaded whole
    m->store().append(m->dictation(u"new"_s));
    QCOMPARE(m->store().records().size(), 2000);
    QCOMPARE(m->texts().first(), u"new"_s);
    QCOMPARE(m->texts().last(), u"1998"_s);
    QCOMPARE(m->reopened().records().size(), 2000);
}

void HistoryStoreTest::anUnreadableHistoryIsMovedAside_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = HistoryFile::encode({Fixture().dictation(u"precious words"_s)});
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("half a file") << good.first(good.size() / 2);
    QTest::newRow("a record without its word count") << QByteArray(good).replace("wordCount", "wordsCount");
}

void HistoryStoreTest::anUnreadableHistoryIsMovedAside()
{
    QFETCH(QByteArray, bytes);
    m->write(bytes);
    QVERIFY(m->store().records().isEmpty());
    QCOMPARE(m->read(quarantineName), bytes);
    QCOMPARE(m->files(), QStringList{quarantineName});
    QCOMPARE(LogCapture::lines().size(), 2);
    QVERIFY(LogCapture::lines().first().startsWith(
        u"com.sayvane.app.history error: history.json could not be decoded: "_s));
    QCOMPARE(LogCapture::lines().last(),
             u"com.sayvane.app.history info: Moved the unreadable history aside to "_s + quarantineName);
    QVERIFY(!LogCapture::lines().join(u'\n').contains(u"precious"_s)); // no dictated text in the log
    const Dictation fresh = m->dictation(u"fresh"_s);
    m->store().append(fresh);
    QCOMPARE(m->read(), HistoryFile::encode({fresh}));
    QCOMPARE(m->read(quarantineName), bytes);
}

void HistoryStoreTest::whatCannotBeMovedAsideIsNotOverwritten()
{
    m->write("damaged");
    m->write("damaged earlier", quarantineName); // the name is taken
    m->store().append(m->dictation(u"fresh"_s));
    QCOMPARE(m->texts(), QStringList{u"fresh"_s});
    QCOMPARE(m->store().stats().dictationsToday, 1);
    QCOMPARE(m->read(), "damaged");
    QCOMPARE(m->read(quarantineName), "damaged earlier");
    QVERIFY(LogCapture::lines().last().startsWith(
        u"com.sayvane.app.history error: Could not move the unreadable history aside, writes disabled this session: "_s));
    // The next start tries from the beginning.
    m->clock.advance(1s);
    QVERIFY(m->reopened().records().isEmpty());
    QCOMPARE(m->read(u"history-corrupt-2026-03-01T091543Z.json"_s), "damaged");
}

void HistoryStoreTest::whatCannotBeReadIsNotOverwritten()
{
    QDir().mkpath(m->path() + u"/inside"_s); // a folder in the file's place
    m->store().append(m->dictation(u"fresh"_s));
    m->store().clear();
    m->store().append(m->dictation(u"fresh"_s));
    QCOMPARE(m->texts(), QStringList{u"fresh"_s});
    QVERIFY(QFileInfo(m->path() + u"/inside"_s).isDir());
    QCOMPARE(m->files(), QStringList{u"history.json"_s});
    QCOMPARE(LogCapture::lines().size(), 1);
    QVERIFY(LogCapture::lines().first().startsWith(
        u"com.sayvane.app.history error: Could not read history.json, writes disabled this session: "_s));
}

void HistoryStoreTest::aFailedWriteKeepsTheOldFileAndIsTriedAgain()
{
    const Dictation a = m->dictation(u"a"_s);
    m->store().append(a);
    const QString folder = QFileInfo(m->path()).path();
    QVERIFY(QDir().rename(folder, folder + u"-away"_s));
    const Dictation b = m->dictation(u"b"_s);
    m->store().append(b);
    QCOMPARE(LogCapture::lines().size(), 1);
    QVERIFY(LogCapture::lines().first().startsWith(u"com.sayvane.app.history error: Could not write history.json: "_s));
    QCOMPARE(m->texts(), (QStringList{u"b"_s, u"a"_s}));
    QVERIFY(QDir().rename(folder + u"-away"_s, folder));
    QCOMPARE(m->read(), HistoryFile::encode({a}));
    m->store().remove(a);
    QCOMPARE(m->read(), HistoryFile::encode({b}));
}

void HistoryStoreTest::aFolderThatCannotBeMadeIsSaidOnce()
{
    QFile inTheWay(m->folders.applicationSupport());
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    m->store().append(m->dictation(u"a"_s));
    QCOMPARE(m->texts(), QStringList{u"a"_s});
    QCOMPARE(LogCapture::lines().size(), 2);
    QCOMPARE(LogCapture::lines().first(),
             u"com.sayvane.app.history error: Could not create the history folder: Not a directory"_s);
    QVERIFY(LogCapture::lines().last().contains(u"Could not write history.json: "_s));
}

void HistoryStoreTest::nobodyElseMayReadTheFile()
{
    m->store().append(m->dictation(u"secret"_s));
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QCOMPARE(QFile::permissions(m->path()) & others, QFile::Permissions());
}

void HistoryStoreTest::aSlowDiskLosesNothing_data()
{
    QTest::addColumn<bool>("leaves"); // before the disk has answered
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QStringList>("texts");
    const QByteArray good = HistoryFile::encode({Fixture().dictation(u"old"_s, 1s)});
    QTest::newRow("it answers") << false << good << QStringList{u"new"_s, u"old"_s};
    QTest::newRow("the program ends first") << true << good << QStringList{u"new"_s, u"old"_s};
    QTest::newRow("damaged, it ends first") << true << good.chopped(1) << QStringList{u"new"_s};
}

void HistoryStoreTest::aSlowDiskLosesNothing()
{
    QFETCH(bool, leaves);
    QFETCH(QByteArray, before);
    m->write(before);
    const QString recording = m->folders.temporary() + u"/said.wav"_s;
    QVERIFY(QFile(recording).open(QIODevice::WriteOnly));
    bool settled = false;
    const Dictation gone = m->dictation(u"gone"_s);
    m->background.held = true;
    m->store().append(gone);
    m->store().append(m->dictation(u"new"_s), recording, [&] { settled = true; });
    m->store().remove(gone);
    QVERIFY(m->store().records().isEmpty()); // nothing before the file is read
    QCOMPARE(m->read(), before);
    QVERIFY(QFile::exists(recording) && !settled);
    if (!leaves)
        m->background.release();
    QCOMPARE(settled, !leaves);
    m->background.held = leaves;
    m->reopened();
    m->background.release();
    QVERIFY(!QFile::exists(recording));
    QTEST(m->texts(), "texts");
    QCOMPARE(m->files().contains(quarantineName), before.back() != ']');
}

QTEST_GUILESS_MAIN(HistoryStoreTest)
#include "HistoryStoreTest.moc"
