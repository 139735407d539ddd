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
    void anOperatorLooksAfterTheAccounts();
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
    std::chrono::sys_seconds now = std::chrono::sys_days{2026y / 2 / 28} + 23h + 50min;
    std::string token;
    const auto left = [&](Accounts &accounts) { return accounts.find(token).value().remainingSeconds(); };
    {
        Accounts accounts(path(), [&] { return now; });
        token = accounts.openSession("a@example.com", "one", 1);
        const Account account = accounts.find(token).value();
        {
            auto done = accounts.reserve(account, 20);
            QCOMPARE(done->remainingSeconds(), 40);
            done->settle();
            const auto failed = accounts.reserve(account, 800); // beyond what is left: forgiven
            QCOMPARE(left(accounts), 0);
            QVERIFY(!accounts.reserve(account, 1));
        }
        QCOMPARE(left(accounts), 40); // what was used before is still used
        alignas(Reservation) std::byte memory[sizeof(Reservation)];
        new (memory) Reservation(*accounts.reserve(account, 5)); // its process is killed: nobody ends it
        QCOMPARE(left(accounts), 35);
    }
    Accounts accounts(path(), [&] { return now; });
    const Account account = accounts.find(token).value();
    QCOMPARE(left(accounts), 35);
    {
        auto last = accounts.reserve(account, 570);
        now += 10min; // midnight in Greenwich
        QCOMPARE(left(accounts), 60);
        const auto failed = accounts.reserve(account, 30);
        last->settle(); // on its own day
        QCOMPARE(left(accounts), 30);
    }
    QCOMPARE(left(accounts), 60);
    now += 20min;
    QCOMPARE(accounts.usage({}, std::chrono::days(7)).front().seconds, 60);
}

void AccountsTest::anOperatorLooksAfterTheAccounts()
{
    std::chrono::sys_seconds now = std::chrono::sys_days{2026y / 2 / 28};
    Accounts accounts(path(), [&] { return now; });
    const std::string a = accounts.openSession("a@example.com", "one", {});
    const std::string b = accounts.openSession("b@example.com", "cut \xf0\x9f", {});
    accounts.reserve(accounts.find(a).value(), 90)->settle();
    QCOMPARE(accounts.sessions(accounts.find(b).value(), b).front().device, std::string("cut"));

    QVERIFY(accounts.setDisabled("a@example.com", true) && !accounts.setDisabled("c@example.com", true));
    QVERIFY(accounts.find(a).value().disabled && !accounts.find(b).value().disabled);
    const auto list = accounts.list();
    QCOMPARE(list.size(), size_t{2});
    QCOMPARE(list[0].account.usedSeconds, 90);
    QCOMPARE(list[0].sessions, 1);
    QVERIFY(accounts.closeSessions("a@example.com") && !accounts.closeSessions("c@example.com"));
    QVERIFY(!accounts.find(a) && accounts.find(b));

    now += std::chrono::days(300);
    accounts.find(b);
    now += std::chrono::days(101); // a server looks by itself once a day
    accounts.reserve(accounts.find(b).value(), 1)->settle();
    QCOMPARE(accounts.usage({}, std::chrono::days(1000)).size(), size_t{1});
    QVERIFY(accounts.find(b));
    QCOMPARE(accounts.prune(std::chrono::days(0)).days, 0); // today's is not old
    QVERIFY(accounts.remove("b@example.com") && !accounts.remove("b@example.com"));
    QVERIFY(!accounts.find(b) && accounts.usage({}, std::chrono::days(9)).empty());
}

void AccountsTest::anAllowanceIsKeptUntilItIsChanged()
{
    Accounts accounts(path());
    const std::string first = accounts.openSession("a@example.com", "one", {});
    QCOMPARE(accounts.find(first).value().dailySeconds, 3600);
    const Account account = accounts.find(first).value();
    QVERIFY(accounts.spendText(account, 400'000) && !accounts.spendText(account, 61'000));
    QVERIFY(accounts.spendText(account, 60'000) && !accounts.spendText(account, 1));
    QCOMPARE(accounts.find(first).value().remainingSeconds(), 3600);
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
            for (int n = 0; n < 3; ++n) {
                if (auto reservation = (i % 2 ? accounts : others).reserve(account, 10)) {
                    reservation->settle();
                    ++granted;
                }
            }
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
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const char *arguments, const char *complaint) {
        QTest::newRow(name) << QByteArray(arguments).split(' ') << QString::fromUtf8(complaint);
    };
    row("session",
        "session --email A@b.c --device 0123456789012345678901234567890123456789012345678901234567890é --daily-minutes "
        "90",
        "");
    row("missing value", "serve --data", "--data needs a value");
    row("port", "--port 65536", "--port needs a number from 0 to 65535");
    row("host", "--host a,DNS:b", "--host needs a host name or an address");
    row("session option to serve", "serve --email a@b.c", "unknown option --email");
    row("no e-mail", "session", "session needs --email");
    row("two recipients", "session --email a@b.c,d@e.f", "--email needs an e-mail address");
    row("no UTF-8", "session --email a\xff@b.c", "--email needs an e-mail address");
    row("nobody's", "accounts revoke", "this needs --email");
    row("another verb's option", "accounts list --days 3", "unknown option --days");
}

void AccountsTest::readsTheCommandLine()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(QString, complaint);
    std::vector<const char *> pointers(arguments.cbegin(), arguments.cend());
    const auto line = CommandLine::parse(pointers);
    QCOMPARE(QString::fromStdString(line ? std::string() : line.error()), complaint);
    if (line && line->action == CommandLine::Action::session) {
        QCOMPARE(line->email, std::string("a@b.c"));
        QVERIFY(line->device.ends_with("é"));
        QCOMPARE(line->dailyMinutes, std::optional(90));
    }
}

QTEST_APPLESS_MAIN(AccountsTest)
#include "AccountsTest.moc"
