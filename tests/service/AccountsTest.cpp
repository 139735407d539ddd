#include "service/accounts/Accounts.h"
#include "service/CommandLine.h"
#include "service/accounts/SessionToken.h"

#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

/// Sessions, the daily allowance, and the command that makes them.
class AccountsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void aSessionIsFoundByItsTokenAlone();
    void theAllowanceLastsADay();
    void anAllowanceIsKeptUntilItIsChanged();
    void requestsAtOnceDoNotShareTheLastSeconds();
    void readsTheAuthorizationHeader();
    void readsTheCommandLine_data();
    void readsTheCommandLine();

private:
    std::filesystem::path path() const { return m_folder->filePath(QStringLiteral("db")).toStdString(); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void AccountsTest::aSessionIsFoundByItsTokenAlone()
{
    Accounts accounts(path());
    const std::string a = accounts.openSession("a@example.com", "one", {});
    const std::string b = accounts.openSession("b@example.com", "two", {});
    QVERIFY(a.starts_with("svs_") && a.size() == 47 && a != b);
    QCOMPARE(accounts.find(a).value().email, std::string("a@example.com"));
    QCOMPARE(accounts.find(b).value().email, std::string("b@example.com"));
    QVERIFY(!accounts.find(a.substr(0, 46)));
    QVERIFY(!accounts.find("' OR 1=1 --"));
    QVERIFY(!accounts.find(SessionToken::hash(a)));
    QVERIFY(!accounts.find(""));
}

void AccountsTest::theAllowanceLastsADay()
{
    std::chrono::sys_seconds now = std::chrono::sys_days{2026y / 2 / 28} + 23h + 59min;
    std::string token;
    {
        Accounts accounts(path(), [&] { return now; });
        token = accounts.openSession("a@example.com", "one", 1);
        const Account account = accounts.find(token).value();
        QCOMPARE(accounts.charge(account, 20), std::optional<std::int64_t>(40));
        QCOMPARE(accounts.charge(account, 35), std::optional<std::int64_t>(5));
        accounts.refund(account, 35);
        QCOMPARE(accounts.find(token).value().remainingSeconds(), 40);
    }
    Accounts accounts(path(), [&] { return now; });
    const Account account = accounts.find(token).value();
    QCOMPARE(account.remainingSeconds(), 40);
    QCOMPARE(accounts.charge(account, 570), std::optional<std::int64_t>(0));
    QVERIFY(!accounts.charge(account, 1));
    QCOMPARE(accounts.find(token).value().remainingSeconds(), 0);
    now += 1min; // midnight in Greenwich
    QCOMPARE(accounts.find(token).value().remainingSeconds(), 60);
    QCOMPARE(accounts.charge(account, 90), std::optional<std::int64_t>(0));
    QVERIFY(!accounts.charge(account, 1));
}

void AccountsTest::anAllowanceIsKeptUntilItIsChanged()
{
    Accounts accounts(path());
    const std::string first = accounts.openSession("a@example.com", "one", {});
    QCOMPARE(accounts.find(first).value().dailySeconds, 3600);
    accounts.openSession("a@example.com", "two", 5);
    accounts.openSession("a@example.com", "three", {});
    QCOMPARE(accounts.find(first).value().dailySeconds, 300);
}

void AccountsTest::requestsAtOnceDoNotShareTheLastSeconds()
{
    Accounts accounts(path());
    Accounts others(path()); // another process with the same file
    const Account account = accounts.find(accounts.openSession("a@example.com", "one", 1)).value();
    std::atomic<int> granted = 0;
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&, i] {
            for (int n = 0; n < 3; ++n)
                granted += (i % 2 ? accounts : others).charge(account, 10) ? 1 : 0;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(granted.load(), 6);
}

void AccountsTest::readsTheAuthorizationHeader()
{
    QCOMPARE(std::string(SessionToken::inHeader("Bearer svs_a")), std::string("svs_a"));
    QVERIFY(SessionToken::inHeader("Basic svs_a").empty());
}

void AccountsTest::readsTheCommandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const char *arguments, const char *complaint) {
        QTest::newRow(name) << QString::fromUtf8(arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts)
                            << QString::fromUtf8(complaint);
    };
    row("session", "session --email A@b.c --device Desk --daily-minutes 90", "");
    row("missing value", "serve --data", "--data needs a value");
    row("port", "--port 65536", "--port needs a number from 0 to 65535");
    row("host", "--host a,DNS:b", "--host needs a host name or an address");
    row("session option to serve", "serve --email a@b.c", "unknown option --email");
    row("no e-mail", "session", "session needs --email");
}

void AccountsTest::readsTheCommandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    QList<QByteArray> bytes;
    for (const QString &argument : arguments)
        bytes << argument.toUtf8();
    std::vector<const char *> pointers(bytes.cbegin(), bytes.cend());
    const auto line = CommandLine::parse(pointers);
    QCOMPARE(QString::fromStdString(line ? std::string() : line.error()), complaint);
    if (line && line->action == CommandLine::Action::session) {
        QCOMPARE(line->email, std::string("a@b.c"));
        QCOMPARE(line->dailyMinutes, std::optional(90));
    }
}

QTEST_APPLESS_MAIN(AccountsTest)
#include "AccountsTest.moc"
