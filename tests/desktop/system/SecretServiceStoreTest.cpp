#include "platform/linux/system/SecretServiceStore.h"
#include "desktop/system/KeyringDaemon.h"
#include "platform/linux/system/SystemClock.h"

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
        return store.add(m_service, m_account, data, Accessibility::afterFirstUnlock);
    }

    void expect(SecretStore &store, const QByteArray &data)
    {
        const SecretStore::Found found = store.find(m_service, m_account);
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
        QCOMPARE(store.find(m_service, m_account).status, SecretStatus::itemNotFound);
        QCOMPARE(store.remove(m_service, m_account), SecretStatus::itemNotFound);

        QCOMPARE(add(store, "gsk_one"), SecretStatus::success);
        expect(store, "gsk_one");
        QCOMPARE(add(store, "gsk_two"), SecretStatus::duplicateItem);
        expect(store, "gsk_one");
        QCOMPARE(store.find(m_service, u"openai_api_key"_s).status, SecretStatus::itemNotFound);

        QCOMPARE(store.remove(m_service, m_account), SecretStatus::success);
        QCOMPARE(store.find(m_service, m_account).status, SecretStatus::itemNotFound);
        QCOMPARE(add(store, "gsk_two"), SecretStatus::success);
        expect(store, "gsk_two");
    }

    void bytesComeBackAsTheyWere()
    {
        const QByteArray data("\xff\xfe\x80gsk\0b\0", 9);
        start();
        SecretServiceStore store(m_clock, {});
        QCOMPARE(add(store, data), SecretStatus::success);
        expect(store, data);
    }

    void aProfileSeesOnlyItsOwn()
    {
        start();
        SecretServiceStore ordinary(m_clock, {});
        SecretServiceStore trial(m_clock, u"trial"_s);
        QCOMPARE(add(trial, "of the trial"), SecretStatus::success);
        QCOMPARE(ordinary.find(m_service, m_account).status, SecretStatus::itemNotFound);
        QCOMPARE(ordinary.remove(m_service, m_account), SecretStatus::itemNotFound);
        QCOMPARE(add(ordinary, "of every day"), SecretStatus::success);
        expect(trial, "of the trial");
        expect(ordinary, "of every day");
        QCOMPARE(trial.remove(m_service, m_account), SecretStatus::success);
        expect(ordinary, "of every day");
        QCOMPARE(trial.find(m_service, m_account).status, SecretStatus::itemNotFound);
    }

    void aLockedKeyringIsNotAnEmptyOne()
    {
        start();
        SecretServiceStore store(m_clock, {});
        QCOMPARE(add(store, "gsk_one"), SecretStatus::success);
        KeyringDaemon::lock();
        const auto locked = SecretStatus::interactionNotAllowed;
        QCOMPARE(store.find(m_service, m_account).status, locked);
        QCOMPARE(store.find(m_service, u"never stored"_s).status, locked);
        QCOMPARE(store.remove(m_service, m_account), locked);
        QCOMPARE(store.remove(m_service, u"never stored"_s), locked);
        QCOMPARE(add(store, "gsk_two"), locked);
        QCOMPARE(store.add(m_service, u"never stored"_s, "x", Accessibility::afterFirstUnlockThisDeviceOnly), locked);

        KeyringDaemon::unlock();
        expect(store, "gsk_one");
        QCOMPARE(store.find(m_service, u"never stored"_s).status, SecretStatus::itemNotFound);
    }

    void withoutAKeyringNothingIsAvailable()
    {
        SecretServiceStore store(m_clock, {});
        QCOMPARE(store.find(m_service, m_account).status, SecretStatus::notAvailable);
        QCOMPARE(add(store, "gsk_one"), SecretStatus::notAvailable);
        QCOMPARE(store.remove(m_service, m_account), SecretStatus::notAvailable);
    }

    void aKeyringStartedAnewIsUsed()
    {
        start();
        SecretServiceStore store(m_clock, {});
        QCOMPARE(add(store, "gsk_one"), SecretStatus::success);
        expect(store, "gsk_one");
        stop();
        QCOMPARE(store.find(m_service, m_account).status, SecretStatus::notAvailable);
        start();
        expect(store, "gsk_one");
        stop();
        start(); // with nothing asked in between
        expect(store, "gsk_one");
        stop();
        start();
        QCOMPARE(store.remove(m_service, m_account), SecretStatus::success);
        QCOMPARE(add(store, "gsk_two"), SecretStatus::success);
    }

    void aUserWithoutAnyKeyringIsToldSo()
    {
        start(KeyringDaemon::Start::untouched);
        SecretServiceStore store(m_clock, {});
        QCOMPARE(store.find(m_service, m_account).status, SecretStatus::itemNotFound);
        QCOMPARE(store.remove(m_service, m_account), SecretStatus::itemNotFound);
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
        QCOMPARE(store.find(m_service, m_account).status, SecretStatus::ioError);
        QVERIFY(timer.elapsed() < 15'000); // D-Bus itself would wait 25 s
        m_daemon->signal(SIGCONT);
        expect(store, "gsk_one");
    }
};

QTEST_GUILESS_MAIN(SecretServiceStoreTest)
#include "SecretServiceStoreTest.moc"
