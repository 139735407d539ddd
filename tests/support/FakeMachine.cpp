#include "support/FakeMachine.h"

#include <QDir>

using namespace Qt::StringLiterals;

SecretStore::Found FakeSecretStore::find(const QString &service, const QString &account)
{
    services.append(service);
    if (unreadable.contains(account))
        return {std::nullopt, SecretStatus::interactionNotAllowed};
    if (findStatus != SecretStatus::success)
        return {std::nullopt, findStatus};
    if (!items.contains(account))
        return {std::nullopt, SecretStatus::itemNotFound};
    return {items.value(account), SecretStatus::success};
}

int32_t FakeSecretStore::add(const QString &service, const QString &account, const QByteArray &data,
                             Accessibility accessibility)
{
    services.append(service);
    if (items.contains(account))
        return SecretStatus::duplicateItem;
    if (addStatus == SecretStatus::success) {
        items.insert(account, data);
        accessibilities.insert(account, accessibility);
    }
    return addStatus;
}

int32_t FakeSecretStore::remove(const QString &service, const QString &account)
{
    services.append(service);
    if (removeStatus != SecretStatus::success)
        return removeStatus;
    return items.remove(account) ? SecretStatus::success : SecretStatus::itemNotFound;
}

std::optional<QString> FakeSecretStore::message(int32_t status) const
{
    if (status == SecretStatus::interactionNotAllowed)
        return u"The keyring is locked."_s;
    return std::nullopt;
}

QString FakePasteboard::text() const
{
    for (const PasteboardItem &item : contents) {
        for (const PasteboardData &data : item) {
            if (data.type == "text/plain"_L1)
                return QString::fromUtf8(data.bytes);
        }
    }
    return {};
}

QStringList FakeFolders::recordings() const
{
    return QDir(temporary()).entryList({u"sayvane-*.wav"_s});
}

class FakeLocalKeys::Monitor final : public LocalKeyMonitor
{
public:
    explicit Monitor(FakeLocalKeys &keys) : m_keys(keys) {}
    ~Monitor() override { m_keys.m_handler = nullptr; }
    Q_DISABLE_COPY_MOVE(Monitor)

private:
    FakeLocalKeys &m_keys;
};

std::unique_ptr<LocalKeyMonitor> FakeLocalKeys::addMonitor(Handler handler)
{
    m_handler = std::move(handler);
    return std::make_unique<Monitor>(*this);
}
