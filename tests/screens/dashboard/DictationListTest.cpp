#include "base/AtomicFile.h"
#include "history/HistoryFile.h"
#include "history/HistoryStore.h"
#include "preferences/Prefs.h"
#include "screens/dashboard/DictationListView.h"
#include "support/FakeMachine.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// It is 09:15 UTC on Sunday 1 March 2026, which is 14:45 in Kolkata.
struct Fixture
{
    /// So many dictations of February are on file, a hundred a day.
    explicit Fixture(int records = 0)
    {
        QList<Dictation> history;
        for (int i = 0; i < records; ++i)
            history.append({.id = QUuid::createUuid(),
                            .date = QDateTime(QDate(2026, 2, 1 + i / 100), QTime(10, 0), QTimeZone::utc()),
                            .text = u"dictation %1"_s.arg(i)});
        std::ranges::reverse(history);
        const QString folder = machine.folders.applicationSupport() + u"/Sayvane"_s;
        if (!QDir().mkpath(folder) || !AtomicFile::replace(folder + u"/history.json"_s, HistoryFile::encode(history)))
            qFatal("The history could not be written.");
        m_store.emplace(machine.folders, machine.clock, machine.background);
    }

    FakeMachine machine;
    Prefs prefs{machine.defaults, {}};
    std::optional<HistoryStore> m_store;
    HistoryStore &store() { return *m_store; }
    std::optional<DictationListView> m_view;

    DictationListView &view()
    {
        if (!m_view)
            m_view.emplace(store(), prefs, machine.clock, machine.pasteboard);
        return *m_view;
    }
    QUuid add(const QString &date, const QString &text, const std::optional<QString> &raw = {})
    {
        const QUuid id = QUuid::createUuid();
        store().append({.id = id,
                        .date = QDateTime::fromString(date, Qt::ISODate),
                        .durationSeconds = 60,
                        .wordCount = 90,
                        .text = text,
                        .rawText = raw});
        return id;
    }
    QStringList column(DictationRows::Role role)
    {
        QStringList values;
        for (int row = 0; row < view().rows()->rowCount(); ++row)
            values.append(view().rows()->index(row).data(role).toString());
        return values;
    }
};

} // namespace

class DictationListTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void daysAreTheUsersOwn()
    {
        Fixture f;
        f.machine.clock.zone = QTimeZone("Asia/Kolkata");
        f.add(u"2026-02-27T10:00:00Z"_s, u"friday"_s);
        f.add(u"2026-02-28T18:29:00Z"_s, u"before midnight"_s);
        f.add(u"2026-02-28T18:31:00Z"_s, u"after midnight"_s);
        f.add(u"2026-03-01T06:35:00Z"_s, u"noon"_s);
        QCOMPARE(f.column(DictationRows::textRole),
                 (QStringList{u"noon"_s, u"after midnight"_s, u"before midnight"_s, u"friday"_s}));
        QCOMPARE(f.column(DictationRows::timeRole),
                 (QStringList{u"12:05 pm"_s, u"12:01 am"_s, u"11:59 pm"_s, u"3:30 pm"_s}));
        QCOMPARE(f.column(DictationRows::dayRole),
                 (QStringList{u"Today"_s, u"Today"_s, u"Yesterday"_s, u"Friday 27 February 2026"_s}));
        QCOMPARE(f.column(DictationRows::lastOfDayRole), (QStringList{u"false"_s, u"true"_s, u"true"_s, u"true"_s}));

        f.machine.clock.advance(std::chrono::hours(24));
        f.view().refresh();
        QCOMPARE(f.column(DictationRows::dayRole).first(), u"Yesterday"_s);
    }

    void searchFindsTextAlone_data()
    {
        QTest::addColumn<QString>("search");
        QTest::addColumn<QStringList>("found");
        QTest::newRow("nothing") << u""_s << QStringList{u"ΟΔΟΣ αγοράς"_s, u"Send the DRAFT"_s};
        QTest::newRow("blanks") << u" \n "_s << QStringList{u"ΟΔΟΣ αγοράς"_s, u"Send the DRAFT"_s};
        QTest::newRow("trimmed, other case") << u" draft\n"_s << QStringList{u"Send the DRAFT"_s};
        QTest::newRow("one letter in two forms") << u"οδοσ"_s << QStringList{u"ΟΔΟΣ αγοράς"_s};
        QTest::newRow("only before cleanup") << u"um"_s << QStringList{};
    }
    void searchFindsTextAlone()
    {
        QFETCH(QString, search);
        QFETCH(QStringList, found);
        Fixture f;
        f.machine.defaults.values.insert(u"hotkeySpec"_s, u"not JSON"_s);
        QCOMPARE(f.view().emptyTitle(), u"No dictations yet"_s);
        QCOMPARE(f.view().emptyHint(), u"Press Fn + Space anywhere to start."_s);
        f.add(u"2026-02-28T10:00:00Z"_s, u"Send the DRAFT"_s, u"um send the draft"_s);
        f.add(u"2026-03-01T08:00:00Z"_s, u"ΟΔΟΣ αγοράς"_s);
        f.view().setSearch(search);
        QCOMPARE(f.column(DictationRows::textRole), found);
        QCOMPARE(f.view().isEmpty(), found.isEmpty());
        QCOMPARE(f.view().emptyTitle(), u"Nothing matches that search"_s);
        QCOMPARE(f.view().emptyHint(), QString());
        QCOMPARE(f.view().clearTitle(), u"Delete all 2 dictations?"_s);
    }

    /// A list that jumped with every dictation could not be read.
    void onlyWhatChangedIsTold()
    {
        Fixture f(HistoryStore::cap);
        DictationRows &rows = *f.view().rows();
        QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy inserted(&rows, &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(&rows, &QAbstractItemModel::rowsRemoved);
        QSignalSpy changed(&rows, &QAbstractItemModel::dataChanged);
        QSignalSpy reset(&rows, &QAbstractItemModel::modelReset);

        f.add(u"2026-03-01T09:00:00Z"_s, u"one more, so the oldest goes"_s);
        QCOMPARE(rows.rowCount(), int(HistoryStore::cap));
        QCOMPARE(inserted.takeFirst().mid(1), (QVariantList{0, 0}));
        QCOMPARE(removed.takeFirst().mid(1), (QVariantList{1999, 1999}));

        f.view().remove(rows.rowCount() - 1); // the last of its day: the one before it becomes that
        QCOMPARE(removed.takeFirst().mid(1), (QVariantList{1999, 1999}));
        QVERIFY(rows.index(1998).data(DictationRows::lastOfDayRole).toBool());

        f.view().setSearch(u"one more"_s);
        QCOMPARE(f.column(DictationRows::textRole), QStringList{u"one more, so the oldest goes"_s});
        f.view().setSearch({});
        QCOMPARE(rows.rowCount(), 1999);
        QCOMPARE(f.column(DictationRows::textRole).at(1), u"dictation 1999"_s);
        QCOMPARE(reset.count(), 0);

        // Here and there: told at once, and right.
        f.view().setSearch(u"7"_s);
        QCOMPARE(rows.rowCount(), int(f.view().filtered().size()));
        QCOMPARE(f.column(DictationRows::textRole).last(), f.view().filtered().last().text);

        f.view().setConfirmingClear(true);
        f.view().clear();
        QVERIFY(f.view().isEmpty() && !f.view().isConfirmingClear() && f.store().records().isEmpty());
    }

    void copyingAndDeletingMeanTheRow()
    {
        Fixture f;
        f.add(u"2026-03-01T08:00:00Z"_s, u"older"_s);
        f.add(u"2026-03-01T09:00:00Z"_s, u"newer\nline"_s);
        f.view().copy(0);
        QCOMPARE(f.machine.pasteboard.text(), u"newer\nline"_s);
        f.view().remove(0);
        f.view().remove(7);
        f.view().copy(-1);
        QCOMPARE(f.column(DictationRows::textRole), QStringList{u"older"_s});
        QCOMPARE(f.machine.pasteboard.text(), u"newer\nline"_s);
    }
};

QTEST_GUILESS_MAIN(DictationListTest)
#include "DictationListTest.moc"
