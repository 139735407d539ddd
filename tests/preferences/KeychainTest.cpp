#include "preferences/Keychain.h"

#include "support/FakeMachine.h"

#include <QCoroTask>
#include <QTest>

using namespace Qt::StringLiterals;

class KeychainTest final : public QObject
{
    Q_OBJECT

    const QString account = u"groq_api_key"_s;

private Q_SLOTS:
    void readsWhatIsThere()
    {
        FakeSecretStore store;
        Keychain keychain(store);
        QVERIFY(keychain.read(account).isReliable() && !keychain.read(account).value);
        store.items.insert(account, " gsk_1\n");
        QCOMPARE(keychain.read(account).value, u" gsk_1\n"_s);
        store.items.insert(account, "gsk_\xFF");
        QVERIFY(keychain.read(account).isReliable() && !keychain.read(account).value);
        store.items.insert(account, "gsk_2");
        store.setTrouble(SecretStatus::interactionNotAllowed);
        QVERIFY(!keychain.read(account).isReliable());
        QCOMPARE(keychain.read(account).value, u"gsk_2"_s); // as it was last read
        QVERIFY(Keychain(store).read(account).isPending());
    }

    void saves()
    {
        constexpr int32_t ok = SecretStatus::success;
        constexpr int32_t refused = SecretStatus::authFailed;
        const std::initializer_list<std::tuple<QString, int32_t, int32_t, QByteArray>> cases{
            {u"new"_s, ok, ok, "new"},   {u""_s, ok, ok, "none"},         {u"new"_s, refused, ok, "old"},
            {u""_s, refused, ok, "old"}, {u"new"_s, ok, refused, "none"},
        };
        for (const auto &[value, remove, add, after] : cases) {
            FakeSecretStore store;
            store.items = FakeSecrets::Base{{account, "old"}, {u"other"_s, "untouched"}};
            store.removeStatus = remove;
            store.addStatus = add;
            Keychain keychain(store);
            const auto saved = keychain.save(value, account, Keychain::Accessibility::afterFirstUnlock);
            QCOMPARE(QCoro::waitFor(saved), remove + add);
            QCOMPARE(store.items.value(account, "none"), after);
            QCOMPARE(keychain.read(account).value.value_or(u"none"_s), QString::fromUtf8(after));
            QCOMPARE(store.items.value(u"other"_s), "untouched");
            QCOMPARE(QSet(store.services.begin(), store.services.end()), QSet{u"com.sayvane.app"_s});
        }
    }
};

QTEST_APPLESS_MAIN(KeychainTest)
#include "KeychainTest.moc"
