#pragma once

#include "base/Clock.h"
#include "base/SecretStore.h"
#include "machine/desktop/KeyringSession.h"

/// Finding, adding and removing items of the desktop's keyring, with whatever the keyring has to ask first.
/// One thread with a GLib main context has it to itself.
///
/// One prompt is open at a time. After one for a look-up that came to nothing there is a minute of quiet, in
/// which look-ups fail at once: who does not want to be asked is not asked at each dictation.
class Keyring
{
public:
    using Attributes = KeyringSession::Attributes;

    Keyring(const Clock &clock, std::function<void()> changed);

    QCoro::Task<SecretStore::Found> find(Attributes attributes, SecretStore::Asking asking);
    QCoro::Task<int32_t> add(Attributes attributes, QString label, QByteArray data);
    QCoro::Task<int32_t> remove(Attributes attributes);

    /// Whether any of the above is under way.
    bool isBusy() const { return m_underWay > 0; }
    /// Has them end soon.
    void cancel() { m_session.cancel(); }

private:
    template <typename T>
    using Answer = KeyringSession::Answer<T>;
    template <typename T>
    using Outcome = KeyringSession::Outcome<T>;
    enum class Occasion { lookUp, act };

    QCoro::Task<SecretStore::Found> look(Attributes attributes, SecretStore::Asking asking);
    /// The default keyring, opened; none where there is no keyring.
    Answer<QString> openDefault(SecretStore::Asking asking, Occasion occasion);
    Answer<void> open(QStringList objects, SecretStore::Asking asking, Occasion occasion);
    /// Waits for the person's answer, where there is a question.
    Answer<QString> answered(QString prompt);
    Answer<QString> makeDefault();
    QCoro::Task<int32_t> create(Attributes attributes, QString label, QByteArray data);
    QCoro::Task<int32_t> removeAll(Attributes attributes);

    const Clock &m_clock;
    KeyringSession m_session;
    Turns m_prompts;
    Clock::Duration m_quietUntil = Clock::Duration::min();
    int m_underWay = 0;
};
