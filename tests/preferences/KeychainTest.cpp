#include "preferences/Keychain.h"

#include "support/FakeMachine.h"

#include <QCoroTask>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString account = u"groq_api_key"_s;
constexpr auto accessibility = Keychain::Accessibility::afterFirstUnlock;

} // namespace

class KeychainTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatIsThere()
    {
        FakeSecretStore store;
        Keychain keychain(store);
        QCOMPARE(keychain.read(account).status, SecretStatus::itemNotFound);
        QVERIFY(keychain.read(account).isReliable());
        store.items.insert(account, " gsk_1\n");
        QCOMPARE(keychain.read(account).value, u" gsk_1\n"_s);
        store.items.insert(account, "gsk_\xFF");
        QCOMPARE(keychain.read(account).value, std::nullopt);
        QVERIFY(keychain.read(account).isReliable());
        store.items.insert(account, "gsk_2");
        store.setTrouble(SecretStatus::interactionNotAllowed);
        QVERIFY(!keychain.read(account).isReliable());
        QCOMPARE(keychain.read(account).value, u"gsk_2"_s); // as it was last read
        QVERIFY(Keychain(store).read(account).isPending());
    }

    void saves_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<int32_t>("removeStatus");
        QTest::addColumn<int32_t>("addStatus");
        QTest::addColumn<QByteArray>("after");
        constexpr auto refused = SecretStatus::authFailed;
        QTest::newRow("in the place of another") << u"new"_s << 0 << 0 << QByteArray("new");
        QTest::newRow("empty deletes") << u""_s << 0 << 0 << QByteArray("none");
        QTest::newRow("cannot be removed") << u"new"_s << int(refused) << 0 << QByteArray("old");
        QTest::newRow("cannot be deleted") << u""_s << int(refused) << 0 << QByteArray("old");
        QTest::newRow("cannot be added") << u"new"_s << 0 << int(SecretStatus::ioError) << QByteArray("none");
    }
    void saves()
    {
        FakeSecretStore store;
        store.items = FakeSecrets::Base{{account, "old"}, {u"other"_s, "untouched"}};
        QFETCH(QString, value);
        QFETCH(int32_t, removeStatus);
        QFETCH(int32_t, addStatus);
        store.removeStatus = removeStatus;
        store.addStatus = addStatus;
        Keychain keychain(store);
        QCOMPARE(QCoro::waitFor(keychain.save(value, account, accessibility)), removeStatus + addStatus);
        QCOMPARE(keychain.read(account).value.value_or(u"none"_s),
                 QString::fromUtf8(store.items.value(account, "none")));
        QTEST(store.items.value(account, "none"), "after");
        QCOMPARE(store.items.value(u"other"_s), "untouched");
        for (const QString &service : store.services)
            QCOMPARE(service, u"com.sayvane.app"_s);
    }
};

QTEST_APPLESS_MAIN(KeychainTest)
#include "KeychainTest.moc"
