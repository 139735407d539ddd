#include "screens/settings/KeyRow.h"

#include "base/Pasteboard.h"
#include "base/Workspace.h"
#include "cloud/speech/ModelResolver.h"
#include "cloud/speech/Transcriber.h"
#include "dictation/ClipboardSnapshot.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"

#include <QPointer>
#include <QUrl>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype suffixLength = 4;
constexpr auto readLimit = 1s; // somebody waits for it

QString waiting()
{
    return KeyRow::tr("Waiting for the Keychain. It may ask you first.");
}

} // namespace

KeyRow::KeyRow(const Needs &needs)
    : m_prefs(needs.prefs),
      m_keychain(needs.keychain),
      m_transcriber(needs.transcriber),
      m_pasteboard(needs.pasteboard),
      m_workspace(needs.workspace)
{
    refreshKeyState();
    connect(&m_keychain, &Keychain::changed, this, &KeyRow::refreshKeyState);
}

KeyRow::~KeyRow()
{
    m_stop.request_stop();
    m_test.request_stop();
}

void KeyRow::setApiKey(const QString &text)
{
    if (m_apiKey == text)
        return;
    m_apiKey = text;
    if (!std::exchange(m_ignoreNextKeyChange, false)) {
        m_keySaved = false;
        m_keyError.clear();
        m_keyNotice.clear();
    }
    Q_EMIT changed();
}

void KeyRow::setShowKey(bool show)
{
    m_showKey = show;
    Q_EMIT changed();
}

void KeyRow::setKeyFieldFocused(bool focused)
{
    if (std::exchange(m_keyFieldFocused, focused) != focused)
        Q_EMIT changed();
}

QString KeyRow::keyPlaceholder() const
{
    const QString start = Providers::facts(m_prefs.provider()).keyPrefix + u'…';
    return m_keyStored ? tr("Key saved (%1%2). Enter a new key to replace it").arg(start, m_keySuffix)
                       : start;
}

QString KeyRow::consoleAddress() const
{
    return Providers::facts(m_prefs.provider()).console;
}

bool KeyRow::isPending() const
{
    return !account().isEmpty() && m_keychain.read(account()).isPending();
}

void KeyRow::lookForKey()
{
    if (isPending())
        m_keychain.fetch(account(), m_stop.get_token());
}

void KeyRow::refreshKeyState()
{
    const QString key = m_keychain.read(account()).value.value_or(QString());
    const bool isStored = std::exchange(m_keyStored, !key.isEmpty()) != m_keyStored;
    if (std::exchange(m_keySuffix, key.right(suffixLength)) != m_keySuffix || isStored)
        Q_EMIT changed();
}

void KeyRow::saveKey()
{
    const Provider provider = m_prefs.provider();
    const QString key = m_apiKey.trimmed();
    if (account().isEmpty() || m_saving)
        return;
    if (key.isEmpty())
        return report({}, m_keyStored
                              ? tr("Nothing typed. The saved key is unchanged. Use Remove key to delete it.")
                              : tr("Type or paste a key first."));
    if (const auto other = Providers::wrongCredential(key, provider))
        return report(tr("This looks like a %1 key. Switch Provider to %1 or paste a %2 key.")
                          .arg(Providers::displayName(*other), Providers::displayName(provider)),
                      {});
    save(key, account());
}

/// The keychain's status; what is shown meanwhile is that it is waited for.
QCoro::Task<int32_t> KeyRow::keep(QString key, QString account)
{
    const std::stop_token stop = m_stop.get_token();
    const QString said = m_keyNotice;
    m_saving = true;
    QCoro::Task<int32_t> saved = m_keychain.save(key, account, Keychain::Accessibility::afterFirstUnlock);
    if (!saved.isReady())
        report({}, waiting());
    const int32_t status = co_await saved;
    if (stop.stop_requested())
        co_return status;
    m_saving = false;
    if (m_keyNotice == waiting())
        m_keyNotice = said;
    co_return status;
}

QCoro::Task<> KeyRow::save(QString key, QString account)
{
    const std::stop_token stop = m_stop.get_token();
    const int32_t status = co_await keep(key, account);
    if (stop.stop_requested())
        co_return;
    if (status != SecretStatus::success)
        co_return report(tr("Couldn't save to Keychain: %1").arg(m_keychain.message(status)), m_keyNotice);
    if (account != this->account())
        co_return; // another provider's row by now
    if (m_apiKey.trimmed() == key)
        emptyField();
    m_showKey = false;
    m_keyFieldFocused = false;
    report({}, {});
    m_keySaved = true;
    refreshKeyState();
    Q_EMIT changed();
    testConnection();
}

void KeyRow::pasteKey()
{
    takeFromClipboard();
}

QCoro::Task<> KeyRow::takeFromClipboard()
{
    const QPointer self(this);
    const QList<PasteboardItem> items = co_await m_pasteboard.items(readLimit);
    if (!self)
        co_return;
    const QString text = ClipboardText::of(items).trimmed();
    if (text.isEmpty()) {
        m_keyNotice = tr("The clipboard has no text on it.");
        Q_EMIT changed();
        co_return;
    }
    setApiKey(text);
    setKeyFieldFocused(true);
}

void KeyRow::removeKey()
{
    if (!account().isEmpty() && !m_saving)
        remove(account());
}

QCoro::Task<> KeyRow::remove(QString account)
{
    const std::stop_token stop = m_stop.get_token();
    const int32_t status = co_await keep({}, account);
    if (stop.stop_requested())
        co_return;
    if (status != SecretStatus::success) {
        m_keyError = tr("Couldn't remove from Keychain: %1").arg(m_keychain.message(status));
        Q_EMIT changed();
        co_return;
    }
    if (account != this->account())
        co_return; // another provider's row by now
    startOver();
    m_keyNotice = tr("Key removed.");
    Q_EMIT changed();
}

void KeyRow::openConsole()
{
    if (m_workspace.open(QUrl(consoleAddress())))
        return;
    m_keyNotice = tr("No browser could be opened. The page is %1").arg(consoleAddress());
    Q_EMIT changed();
}

void KeyRow::testConnection()
{
    m_test.request_stop();
    m_test = {};
    m_testingConnection = true;
    clearConnectionResult();
    test(m_prefs.provider(), m_test.get_token());
}

QCoro::Task<> KeyRow::test(Provider provider, std::stop_token stop)
{
    const auto models = co_await m_transcriber.listModels(provider, stop);
    if (stop.stop_requested())
        co_return;
    m_testingConnection = false;
    if (m_prefs.provider() == provider) {
        if (models)
            applyResolvedModels(*models, provider);
        else
            m_connectionError = models.error().description;
    }
    Q_EMIT changed();
}

void KeyRow::applyResolvedModels(const QStringList &available, Provider provider)
{
    const ConnectionResult result = ConnectionResult::applyResolvedModels(
        available, provider, m_prefs.transcriptionModel(), m_prefs.chatModel());
    if (result.transcriptionModel)
        m_prefs.setModel(*result.transcriptionModel, ModelPurpose::transcription);
    if (result.chatModel)
        m_prefs.setModel(*result.chatModel, ModelPurpose::chat);
    m_connectionError.clear();
    m_connectionStatus = result.status;
    m_connectionDetail = result.detail;
}

void KeyRow::clearConnectionResult()
{
    m_connectionStatus.clear();
    m_connectionDetail.clear();
    m_connectionError.clear();
    Q_EMIT changed();
}

void KeyRow::startOver()
{
    emptyField();
    m_showKey = false;
    report({}, {});
    clearConnectionResult();
    refreshKeyState();
    Q_EMIT changed(); // what the placeholder and the page say depends on the provider
}

QString KeyRow::account() const
{
    return Providers::keychainAccount(m_prefs.provider());
}

void KeyRow::emptyField()
{
    m_ignoreNextKeyChange = !m_apiKey.isEmpty();
    setApiKey({});
}

void KeyRow::report(const QString &error, const QString &notice)
{
    m_keySaved = false;
    m_keyError = error;
    m_keyNotice = notice;
    Q_EMIT changed();
}
