#include "machine/desktop/SecretServiceStore.h"
#include "desktop/system/KeyringDaemon.h"
#include "machine/desktop/SystemClock.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <optional>

using namespace Qt::StringLiterals;

using Accessibility = SecretStore::Accessibility;

class SecretServiceStoreTest : public QObject
{
    Q_OBJECT

    const QString m_service = u"com.sayvane.app"_s;
    const QString m_account = u"groq_api_key"_s;
    SystemClock m_clock;
    std::unique_ptr<QTemporaryDir> m_data;
    std::optional<KeyringDaemon> m_daemon;

    void start(KeyringDaemon::Start how = KeyringDaemon::Start::unlocked)
    {
        m_daemon.emplace(m_data->path(), how);
        QTRY_VERIFY(KeyringDaemon::isThere());
        if (how == KeyringDaemon::Start::unlocked)
            QTRY_VERIFY(KeyringDaemon::defaultCollection().size() > 1);
    }

    void stop()
    {
        m_daemon.reset();
        QTRY_VERIFY(!KeyringDaemon::isThere());
    }

    int32_t add(SecretStore &store, const QByteArray &data)
    {
        return QCoro::waitFor(store.add(m_service, m_account, data, Accessibility::afterFirstUnlock));
    }
    SecretStore::Found find(SecretStore &store, const QString &account)
    {
        return QCoro::waitFor(store.find(m_service, account, SecretStore::Asking::silently, {}));
    }
    int32_t remove(SecretStore &store, const QString &account)
    {
        return QCoro::waitFor(store.remove(m_service, account));
    }

    void expect(SecretStore &store, const QByteArray &data)
    {
        const SecretStore::Found found = find(store, m_account);
        QCOMPARE(found.status, SecretStatus::success);
        QCOMPARE(found.data, std::optional(data));
    }

private Q_SLOTS:
    void init() { m_data = std::make_unique<QTemporaryDir>(); }
    void cleanup() { stop(); }

    void aSecretIsStoredReplacedAndRemoved()
    {
        start();
        SecretServiceStore store(m_clock, {});
        QCOMPARE(find(store, m_account).status, SecretStatus::itemNotFound);
        QCOMPARE(remove(store, m_account), SecretStatus::itemNotFound);

        QCOMPARE(add(store, "gsk_one"), SecretStatus::success);
        expect(store, "gsk_one");
        QCOMPARE(add(store, "gsk_two"), SecretStatus::duplicateItem);
        expect(store, "gsk_one");
        QCOMPARE(find(store, u"openai_api_key"_s).status, SecretStatus::itemNotFound);

        QCOMPARE(remove(store, m_account), SecretStatus::success);
        QCOMPARE(find(store, m_account).status, SecretStatus::itemNotFound);
        const QByteArray bytes("\xff\xfe\x80gsk\0b\0", 9);
        QCOMPARE(add(store, bytes), SecretStatus::success);
        expect(store, bytes);
    }

    void aProfileSeesOnlyItsOwn()
    {
        start();
        SecretServiceStore ordinary(m_clock, {});
        SecretServiceStore trial(m_clock, u"trial"_s);
        QCOMPARE(add(trial, "of the trial"), SecretStatus::success);
        QCOMPARE(find(ordinary, m_account).status, SecretStatus::itemNotFound);
        QCOMPARE(remove(ordinary, m_account), SecretStatus::itemNotFound);
        QCOMPARE(add(ordinary, "of every day"), SecretStatus::success);
        expect(trial, "of the trial");
        expect(ordinary, "of every day");
        QCOMPARE(remove(trial, m_account), SecretStatus::success);
        expect(ordinary, "of every day");
        QCOMPARE(find(trial, m_account).status, SecretStatus::itemNotFound);
    }

    void aLockedKeyringIsNotAnEmptyOne()
    {
        start();
        SecretServiceStore store(m_clock, {});
        QCOMPARE(add(store, "gsk_one"), SecretStatus::success);
        KeyringDaemon::lock();
        const auto locked = SecretStatus::interactionNotAllowed;
        QCOMPARE(find(store, m_account).status, locked);
        QCOMPARE(find(store, u"never stored"_s).status, locked);
        QCOMPARE(remove(store, m_account), locked);
        QCOMPARE(remove(store, u"never stored"_s), locked);
        QCOMPARE(add(store, "gsk_two"), locked);

        int changes = 0;
        const auto listener = std::make_shared<const std::function<void()>>([&changes] { ++changes; });
        store.follow(listener);
        KeyringDaemon::unlock();
        QTRY_VERIFY(changes > 0);
        expect(store, "gsk_one");
        QCOMPARE(find(store, u"never stored"_s).status, SecretStatus::itemNotFound);
    }

    void aKeyringStartedAnewIsUsed()
    {
        start();
        SecretServiceStore store(m_clock, {});
        QCOMPARE(add(store, "gsk_one"), SecretStatus::success);
        expect(store, "gsk_one");
        stop();
        QCOMPARE(find(store, m_account).status, SecretStatus::notAvailable);
        QCOMPARE(add(store, "gsk_two"), SecretStatus::notAvailable);
        QCOMPARE(remove(store, m_account), SecretStatus::notAvailable);
        start();
        expect(store, "gsk_one");
        stop();
        int changes = 0;
        const auto listener = std::make_shared<const std::function<void()>>([&changes] { ++changes; });
        store.follow(listener);
        start(); // with nothing asked in between
        QTRY_VERIFY(changes > 0);
        expect(store, "gsk_one");
        stop();
        start();
        QCOMPARE(remove(store, m_account), SecretStatus::success);
        QCOMPARE(add(store, "gsk_two"), SecretStatus::success);
    }

    void aUserWithoutAnyKeyringIsToldSo()
    {
        start(KeyringDaemon::Start::untouched);
        SecretServiceStore store(m_clock, {});
        QCOMPARE(find(store, m_account).status, SecretStatus::itemNotFound);
        QCOMPARE(remove(store, m_account), SecretStatus::itemNotFound);
        QCOMPARE(add(store, "gsk_one"), SecretStatus::noDefaultKeyring);
    }

    void aKeyringThatHangsIsNotWaitedForLong()
    {
        start();
        SecretServiceStore store(m_clock, {});
        QCOMPARE(add(store, "gsk_one"), SecretStatus::success);
        m_daemon->signal(SIGSTOP);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(find(store, m_account).status, SecretStatus::ioError);
        QVERIFY(timer.elapsed() < 15'000); // D-Bus itself would wait 25 s
        m_daemon->signal(SIGCONT);
        expect(store, "gsk_one");
    }
};

QTEST_GUILESS_MAIN(SecretServiceStoreTest)
#include "SecretServiceStoreTest.moc"
