#include "settings/Keychain.h"

#include "support/FakeMachine.h"

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
    void readsWhatIsThere_data()
    {
        QTest::addColumn<std::optional<QByteArray>>("bytes");
        QTest::addColumn<int32_t>("findStatus");
        QTest::addColumn<std::optional<QString>>("value");
        QTest::addColumn<int32_t>("status");
        QTest::addColumn<bool>("isReliable");
        const auto none = std::optional<QString>();
        const auto row = [](const char *name, const std::optional<QByteArray> &bytes, int32_t findStatus,
                            const std::optional<QString> &value, int32_t status, bool isReliable) {
            QTest::newRow(name) << bytes << findStatus << value << status << isReliable;
        };
        row("a key", "gsk_1", 0, u"gsk_1"_s, 0, true);
        row("nothing trimmed", " gsk_1\n", 0, u" gsk_1\n"_s, 0, true);
        row("beyond ASCII", "gsk_\xC3\xA9", 0, u"gsk_é"_s, 0, true);
        row("no item", std::nullopt, 0, none, -25300, true);
        row("not UTF-8", "gsk_\xFF", 0, none, 0, true);
        row("cut-off UTF-8", "gsk_\xE2\x82", 0, none, 0, true);
        row("locked", "gsk_1", SecretStatus::interactionNotAllowed, none, -25308, false);
        row("refused by the user", "gsk_1", SecretStatus::userCanceled, none, -128, false);
    }
    void readsWhatIsThere()
    {
        FakeSecretStore store;
        QFETCH(std::optional<QByteArray>, bytes);
        if (bytes)
            store.items.insert(account, *bytes);
        QFETCH(int32_t, findStatus);
        store.findStatus = findStatus;
        const Keychain::ReadResult result = Keychain(store).read(account);
        QTEST(result.value, "value");
        QTEST(result.status, "status");
        QTEST(result.isReliable(), "isReliable");
    }

    void saves_data()
    {
        QTest::addColumn<std::optional<QByteArray>>("before");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int32_t>("removeStatus");
        QTest::addColumn<int32_t>("addStatus");
        QTest::addColumn<int32_t>("status");
        QTest::addColumn<std::optional<QByteArray>>("after");
        const auto row = [](const char *name, const std::optional<QByteArray> &before, const QString &value,
                            int32_t removeStatus, int32_t addStatus, int32_t status,
                            const std::optional<QByteArray> &after) {
            QTest::newRow(name) << before << value << removeStatus << addStatus << status << after;
        };
        row("a first key", std::nullopt, u"new"_s, 0, 0, 0, "new");
        row("in the place of another", "old", u"new"_s, 0, 0, 0, "new");
        row("empty deletes", "old", u""_s, 0, 0, 0, std::nullopt);
        row("empty without an item", std::nullopt, u""_s, 0, 0, 0, std::nullopt);
        row("cannot be removed", "old", u"new"_s, SecretStatus::authFailed, 0, -25293, "old");
        row("cannot be deleted", "old", u""_s, SecretStatus::authFailed, 0, -25293, "old");
        row("cannot be added", "old", u"new"_s, 0, SecretStatus::ioError, -36, std::nullopt);
    }
    void saves()
    {
        FakeSecretStore store;
        QFETCH(std::optional<QByteArray>, before);
        if (before)
            store.items.insert(account, *before);
        store.items.insert(u"other"_s, "untouched");
        QFETCH(int32_t, removeStatus);
        QFETCH(int32_t, addStatus);
        store.removeStatus = removeStatus;
        store.addStatus = addStatus;
        QFETCH(QString, value);
        Keychain keychain(store);
        QTEST(keychain.save(value, account, accessibility), "status");
        QFETCH(std::optional<QByteArray>, after);
        QCOMPARE(store.items.contains(account), after.has_value());
        QCOMPARE(store.items.value(account), after.value_or(QByteArray()));
        QCOMPARE(store.items.value(u"other"_s), "untouched");
        for (const QString &service : store.services)
            QCOMPARE(service, u"com.sayvane.app"_s);
    }

    void explainsAStatus()
    {
        FakeSecretStore store;
        QCOMPARE(Keychain(store).message(SecretStatus::interactionNotAllowed), u"The keyring is locked."_s);
        QCOMPARE(Keychain(store).message(-12345), u"Keychain error -12345"_s);
    }
};

QTEST_APPLESS_MAIN(KeychainTest)
#include "KeychainTest.moc"
