#pragma once

#include "base/Completion.h"
#include "machine/desktop/GlibThread.h"

#include <QByteArray>
#include <QCoroTask>
#include <QMap>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <deque>
#include <expected>
#include <functional>
#include <memory>

struct _SecretService;

/// One coroutine at a time, in the order in which they came, all on one thread.
class Turns
{
public:
    /// Whoever keeps it has the turn; the next one's begins as it is given up.
    using Turn = std::shared_ptr<void>;

    QCoro::Task<Turn> take()
    {
        if (m_taken) {
            Completion<bool> called;
            m_waiting.push_back(&called);
            const Completion<bool>::Awaiter awaiter{&called};
            co_await awaiter;
        }
        m_taken = true;
        const Turn turn(this, [](void *self) { static_cast<Turns *>(self)->pass(); });
        co_return turn;
    }

private:
    void pass()
    {
        m_taken = !m_waiting.empty();
        if (!m_taken)
            return;
        Completion<bool> *next = m_waiting.front();
        m_waiting.pop_front();
        next->complete(true);
    }

    bool m_taken = false;
    std::deque<Completion<bool> *> m_waiting;
};

/// A client's session with the desktop's Secret Service (the freedesktop.org Secret Service API, 0.2), with
/// secrets encrypted on the bus by libsecret. One thread with a GLib main context has it to itself.
///
/// All goes over one connection: a keyring may trust it and no other. Every call has a limit in time.
/// Failures are numbers of SecretStatus. Paths are D-Bus object paths; a prompt is the path of a question
/// that stands before the act, empty where none does.
class KeyringSession
{
public:
    template <typename T>
    using Outcome = std::expected<T, int32_t>;
    template <typename T>
    using Answer = QCoro::Task<Outcome<T>>;
    using Attributes = QMap<QString, QString>;

    struct Secret
    {
        QByteArray bytes;
    };
    struct Items
    {
        QStringList unlocked;
        QStringList locked;
    };
    struct Listener
    {
        std::function<void()> changed; ///< another look may find something else; told a moment later
        std::function<void()> left;    ///< the service that was there is there no more
    };

    explicit KeyringSession(Listener listener);
    ~KeyringSession();
    Q_DISABLE_COPY_MOVE(KeyringSession)

    Answer<Items> search(Attributes attributes);

    /// Where new items go; empty when this user has no keyring yet.
    Answer<QString> defaultCollection();
    Answer<bool> isLocked(QString collection);

    Answer<Secret> secret(QString item);
    Answer<QString> create(QString collection, QString label, Attributes attributes, QByteArray secret);
    Answer<QString> remove(QString item);
    Answer<QString> unlock(QStringList objects);
    Answer<QString> createDefaultCollection();

    /// Shows the prompt and waits for the person; what came of it, or `userCanceled`.
    Answer<QString> show(QString prompt);
    /// Nobody waits for the prompt that is shown any more.
    void abandonPrompt();

    /// Has listeners look again after a while: nothing else would tell that the trouble is over.
    void lookAgainLater();

    /// Ends what is under way, and all that is asked from now on.
    void cancel();

private:
    /// A shared reference; no null pointer converts to an outcome of it.
    template <typename T>
    struct Kept
    {
        std::shared_ptr<T> reference;

        T *get() const { return reference.get(); }
        explicit operator bool() const { return reference != nullptr; }
    };
    using Reply = Kept<GVariant>;
    using Bus = Kept<GDBusConnection>;
    using Session = Kept<_SecretService>;

    Answer<Bus> bus();
    Answer<Session> session();
    Answer<Reply> call(QString path, const char *interface, const char *method, GVariant *arguments,
                       const char *replyType, int limitMs);
    void follow();
    void ownerChanged(bool isThere);
    void announce(int delayMs);
    void forget();

    static void signalled(GDBusConnection *, const gchar *sender, const gchar *path, const gchar *interface,
                          const gchar *name, GVariant *arguments, gpointer self);
    static void promptCompleted(GDBusConnection *, const gchar *sender, const gchar *path,
                                const gchar *interface, const gchar *name, GVariant *arguments,
                                gpointer self);

    Listener m_listener;
    GlibPointer<GCancellable> m_stop;
    Bus m_bus;
    QList<guint> m_subscriptions;
    Session m_session;
    Turns m_connecting;
    Turns m_opening;
    Completion<Outcome<QString>> *m_prompt = nullptr; // the one that is shown
    GlibPointer<GSource> m_announcement;
};
