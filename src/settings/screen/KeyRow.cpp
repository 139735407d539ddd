#include "settings/screen/KeyRow.h"

#include "platform/Pasteboard.h"
#include "platform/Workspace.h"
#include "settings/Keychain.h"
#include "settings/Prefs.h"
#include "settings/screen/ClipboardText.h"
#include "settings/screen/ConnectionTest.h"

#include <QPointer>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype suffixLength = 4;

} // namespace

KeyRow::KeyRow(const Collaborators &with)
    : m_prefs(with.prefs),
      m_keychain(with.keychain),
      m_pasteboard(with.pasteboard),
      m_workspace(with.workspace),
      m_connection(with.connection)
{
    refreshKeyState();
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
    const QString start = OwnKey::prefix(m_prefs.provider()) + u'…';
    return m_keyStored ? u"Key saved (%1%2). Enter a new key to replace it"_s.arg(start, m_keySuffix) : start;
}

QString KeyRow::consoleAddress() const
{
    return OwnKey::consoleAddress(m_prefs.provider());
}

bool KeyRow::storedKeyExists() const
{
    return !storedKey().isEmpty();
}

void KeyRow::refreshKeyState()
{
    const QString key = storedKey();
    const bool isStored = std::exchange(m_keyStored, !key.isEmpty()) != m_keyStored;
    if (std::exchange(m_keySuffix, key.right(suffixLength)) != m_keySuffix || isStored)
        Q_EMIT changed();
}

void KeyRow::saveKey()
{
    const Provider provider = m_prefs.provider();
    const QString key = m_apiKey.trimmed();
    if (account().isEmpty())
        return;
    if (key.isEmpty())
        return report({}, storedKeyExists()
                              ? u"Nothing typed. The saved key is unchanged. Use Remove key to delete it."_s
                              : u"Type or paste a key first."_s);
    if (const auto other = wrongCredential(key, provider))
        return report(u"This looks like a %1 key. Switch Provider to %1 or paste a %2 key."_s.arg(
                          Providers::displayName(*other), Providers::displayName(provider)),
                      {});
    const int32_t status = m_keychain.save(key, account(), Keychain::Accessibility::afterFirstUnlock);
    if (status != SecretStatus::success)
        return report(u"Couldn't save to Keychain: %1"_s.arg(m_keychain.message(status)), m_keyNotice);
    emptyField();
    m_showKey = false;
    m_keyFieldFocused = false;
    report({}, {});
    m_keySaved = true;
    refreshKeyState();
    Q_EMIT changed();
    m_connection.testConnection();
}

void KeyRow::pasteKey()
{
    takeFromClipboard();
}

QCoro::Task<> KeyRow::takeFromClipboard()
{
    const QPointer self(this);
    const QList<PasteboardItem> items = co_await m_pasteboard.items();
    if (!self)
        co_return;
    const QString text = ClipboardText::of(items).trimmed();
    if (text.isEmpty()) {
        m_keyNotice = u"The clipboard has no text on it."_s;
        Q_EMIT changed();
        co_return;
    }
    setApiKey(text);
    setKeyFieldFocused(true);
}

void KeyRow::removeKey()
{
    if (account().isEmpty())
        return;
    const int32_t status = m_keychain.save({}, account(), Keychain::Accessibility::afterFirstUnlock);
    if (status != SecretStatus::success) {
        m_keyError = u"Couldn't remove from Keychain: %1"_s.arg(m_keychain.message(status));
        Q_EMIT changed();
        return;
    }
    startOver();
    m_keyNotice = u"Key removed."_s;
    Q_EMIT changed();
}

void KeyRow::openConsole()
{
    if (m_workspace.open(QUrl(consoleAddress())))
        return;
    m_keyNotice = u"No browser could be opened. The page is %1"_s.arg(consoleAddress());
    Q_EMIT changed();
}

void KeyRow::startOver()
{
    emptyField();
    m_showKey = false;
    report({}, {});
    m_connection.clearConnectionResult();
    refreshKeyState();
    Q_EMIT changed(); // what the placeholder and the page say depends on the provider
}

QString KeyRow::account() const
{
    return Providers::keychainAccount(m_prefs.provider());
}

QString KeyRow::storedKey() const
{
    return account().isEmpty() ? QString() : m_keychain.read(account()).value.value_or(QString());
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
