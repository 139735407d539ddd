#pragma once

#include "base/AccessibilityTrust.h"
#include "base/Activation.h"
#include "base/Appearance.h"
#include "base/Autostart.h"
#include "base/Background.h"
#include "base/Completion.h"
#include "base/ComputerName.h"
#include "base/DefaultsStore.h"
#include "base/FloatingPanel.h"
#include "base/Folders.h"
#include "base/Graphics.h"
#include "base/KeyPoster.h"
#include "base/Listeners.h"
#include "base/LocalKeys.h"
#include "base/Pasteboard.h"
#include "base/Platform.h"
#include "base/Presence.h"
#include "base/SecretStore.h"
#include "base/SoundPlayer.h"
#include "base/Workspace.h"
#include "support/FakeMicrophone.h"
#include "support/FakeTransport.h"
#include "support/VirtualClock.h"

#include <QHash>
#include <QStringList>
#include <QTemporaryDir>

#include <deque>
#include <functional>
#include <memory>
#include <utility>

/// Preferences in memory.
class FakeDefaultsStore final : public DefaultsStore
{
public:
    QJsonValue value(const QString &key) const override { return values.value(key, QJsonValue::Undefined); }
    void setValue(const QString &key, const QJsonValue &value) override { values.insert(key, value); }
    void remove(const QString &key) override { values.remove(key); }

    QHash<QString, QJsonValue> values;
};

/// What a keyring holds, by account; it tells of every change.
class FakeSecrets : private QHash<QString, QByteArray>
{
public:
    using Base = QHash<QString, QByteArray>;
    using Base::contains, Base::isEmpty, Base::value;

    explicit FakeSecrets(std::function<void()> changed) : m_changed(std::move(changed)) {}
    FakeSecrets(const FakeSecrets &) = delete;
    FakeSecrets &operator=(const FakeSecrets &) = delete;
    FakeSecrets &operator=(const Base &items)
    {
        Base::operator=(items);
        m_changed();
        return *this;
    }
    void insert(const QString &account, const QByteArray &data)
    {
        Base::insert(account, data);
        m_changed();
    }
    bool remove(const QString &account)
    {
        const bool was = Base::remove(account);
        m_changed();
        return was;
    }
    void clear() { *this = Base(); }
    const Base &all() const { return *this; }

private:
    std::function<void()> m_changed;
};

/// A keyring in memory that can be told to fail, and answers at once or when a test lets it.
class FakeSecretStore final : public SecretStore
{
public:
    ~FakeSecretStore() override { setHangs(false); }

    QCoro::Task<Found> find(QString service, QString account, Asking asking, std::stop_token stop) override;
    QCoro::Task<int32_t> add(QString service, QString account, QByteArray data, Accessibility accessibility) override;
    QCoro::Task<int32_t> remove(QString service, QString account) override;
    void follow(const Listener &listener) override { m_listeners.add(listener); }
    std::optional<QString> message(int32_t status) const override;

    /// While it hangs it answers nothing; then everything that was asked, in order.
    void setHangs(bool hangs);
    /// Every operation fails with the status from now on, or works with 0; whoever listens is told.
    void setTrouble(int32_t status);

    FakeSecrets items{[this] { m_listeners.tell(); }};
    QHash<QString, Accessibility> accessibilities;
    int32_t findStatus = SecretStatus::success; ///< anything else fails every look-up
    QStringList unreadable;                     ///< accounts whose look-up alone fails
    QStringList services;                       ///< every service asked for
    int32_t addStatus = SecretStatus::success;
    int32_t removeStatus = SecretStatus::success;
    int asked = 0; ///< how often its owner would have been asked to open it

private:
    QCoro::Task<> answering(std::stop_token stop);

    Listeners m_listeners;
    bool m_hangs = false;
    std::deque<std::shared_ptr<Completion<bool>>> m_waiting;
};

/// A clipboard in memory.
class FakePasteboard final : public Pasteboard
{
public:
    explicit FakePasteboard(Clock &clock) : m_clock(clock) {}
    ~FakePasteboard() override;

    QCoro::Task<QList<PasteboardItem>> items(std::chrono::milliseconds limit) override;
    bool isReachable() const override { return reachable; }
    qint64 changeCount() const override { return count; }
    bool isOurs() const override { return ours; }
    qint64 readCount() const override { return reads; }
    void setItems(const QList<PasteboardItem> &items) override { replace(items, true); }
    /// Another program copies a text.
    void copy(const QString &text) { replace({{{plainText, text.toUtf8()}}}, false); }
    QString text() const;

    QList<PasteboardItem> contents;
    qint64 count = 1;
    bool ours = false;
    bool reachable = true;
    std::chrono::milliseconds ownerNeeds{0}; ///< for what it has copied
    qint64 asked = 0;                        ///< how often we read
    qint64 reads = 0;                        ///< how often others read what is ours

private:
    void setPlainText(const QString &text) override { replace({{{plainText, text.toUtf8()}}}, true); }
    void replace(const QList<PasteboardItem> &items, bool isOurs)
    {
        contents = items;
        ours = isOurs;
        ++count;
    }

    const QString plainText = QString::fromLatin1("text/plain");
    Clock &m_clock;
    QObject m_thread; // whose answers come later
};

/// Notes what is typed.
class FakeKeyPoster final : public KeyPoster
{
public:
    void prepare() override {}
    QCoro::Task<bool> post(KeyChord chord, std::function<bool()> mayStill) override;
    explicit FakeKeyPoster(FakePasteboard &watched) : pasteboard(watched) {}
    ~FakeKeyPoster() override;

    FakePasteboard &pasteboard;
    bool works = true;
    std::function<void()> whileWaiting; ///< for the user to let go of the modifiers
    bool isReadAtOnce = true;           ///< the application is not too busy to paste
    QList<KeyChord> posted;
    QStringList clipboardWhenPosted;

private:
    QObject m_server; // whose answers come later
};

/// A keyboard that a test presses.
class FakeKeyTaps final : public KeyTaps
{
public:
    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;
    QString holder() const override { return heldBy; }
    void follow(std::weak_ptr<const Listener> told) override { listener = std::move(told); }

    /// What the tap makes of the event; `pass` when none is installed.
    KeyVerdict send(const KeyEvent &event) { return m_handler ? m_handler(event) : KeyVerdict::pass; }
    /// Presses and releases, then lets posted steps run.
    KeyVerdict tap(qint64 keyCode, quint64 flags);

    bool isInstalled() const { return m_handler != nullptr; }

    bool allowsInstall = true;
    QString heldBy;
    std::weak_ptr<const Listener> listener;
    QList<KeyChord> watched;
    int installs = 0;
    int enables = 0;

private:
    class Tap;
    Handler m_handler;
};

/// A keyboard under the program's own windows.
class FakeLocalKeys final : public LocalKeys
{
public:
    std::unique_ptr<LocalKeyMonitor> addMonitor(Handler handler) override;

    /// Whether the event was consumed.
    bool send(const LocalKeyEvent &event)
    {
        const Handler handler = m_handler;
        return handler && handler(event);
    }
    bool isWatched() const { return m_handler != nullptr; }

private:
    class Monitor;
    Handler m_handler;
};

class FakeTrust final : public AccessibilityTrust
{
public:
    bool isTrusted() const override { return trusted; }
    bool isTrustedPrompting() override { return trusted; }
    QList<Checkup> checkups() const override
    {
        return {Checkup::of(QString::fromLatin1("shortcut"), QString::fromLatin1("a grab"), trusted,
                            QString::fromLatin1("Grant it."))};
    }

    bool trusted = true;
};

class FakeSoundPlayer final : public SoundPlayer
{
public:
    void play(const QString &name) override { played.append(name); }

    QStringList played;
};

class FakeAutostart final : public Autostart
{
public:
    bool isOn() const override { return on; }
    std::expected<void, QString> set(bool isOn) override
    {
        on = isOn;
        return {};
    }

    bool on = false;
};

/// Does work at once, or when the test says so, as a slow disk would.
class FakeBackground final : public Background
{
public:
    void run(QObject &, std::function<void()> work, std::function<void()> then) override
    {
        m_waiting.append({std::move(work), std::move(then)});
        if (!held)
            release();
    }
    void finish() override
    {
        for (const auto &[work, then] : std::exchange(m_waiting, {}))
            work();
    }
    void release()
    {
        held = false;
        while (!m_waiting.isEmpty()) {
            const auto [work, then] = m_waiting.takeFirst();
            work();
            if (then)
                then();
        }
    }

    bool held = false;

private:
    QList<std::pair<std::function<void()>, std::function<void()>>> m_waiting;
};

class FakeVolumes final : public Volumes
{
public:
    std::optional<int64_t> availableCapacity(const QString &) const override { return capacity; }

    std::optional<int64_t> capacity = int64_t{1} << 40;
};

class FakeFolders final : public Folders
{
public:
    QString temporary() const override { return m_directory.path(); }
    QString applicationSupport() const override { return m_directory.filePath(QString::fromLatin1("data")); }
    /// The recordings that exist.
    QStringList recordings() const;

private:
    QTemporaryDir m_directory;
};

class FakeWorkspace final : public Workspace
{
public:
    bool open(const QUrl &address) override
    {
        opened.append(address);
        return true;
    }
    bool open(SettingsPane) override { return true; }

    QList<QUrl> opened;
};

/// A desktop without floating panels, which takes no display.
class FakeFloatingPanels final : public FloatingPanels
{
public:
    std::unique_ptr<FloatingPanel> create(PanelContent &) override { return nullptr; }
};

class FakeComputerName final : public ComputerName
{
public:
    QString localizedName() const override { return QString::fromLatin1("Study"); }
};

class FakeActivation final : public Activation
{
public:
    void setPolicy(ActivationPolicy wanted) override { policy = wanted; }
    bool tilesWindows() const override { return tiles; }

    ActivationPolicy policy = ActivationPolicy::accessory;
    bool tiles = false;
};

class FakeGraphics final : public Graphics
{
public:
    bool hasProcessor() const override { return false; }
};

class FakeAppearance final : public Appearance
{
public:
    AppearanceWishes wishes() const override { return wanted; }
    void follow(const Listener &listener) override { m_listeners.add(listener); }
    void want(const AppearanceWishes &wishes)
    {
        wanted = wishes;
        m_listeners.tell();
    }

    AppearanceWishes wanted;

private:
    Listeners m_listeners;
};

/// A user who comes and goes.
class FakePresence final : public Presence
{
public:
    bool isAway() const override { return away; }
    void follow(const Listener &listener) override { m_listeners.add(listener); }
    void followResume(const Listener &) override {}
    std::unique_ptr<Wakefulness> delaySleep() override;

    void leave() { become(true); }
    void comeBack() { become(false); }

    bool away = false;
    int delays = 0; ///< of sleep that are held

private:
    class Delay;
    void become(bool wanted)
    {
        away = wanted;
        m_listeners.tell();
    }

    Listeners m_listeners;
};

/// A machine for tests: public fields set the scene and tell what happened.
class FakeMachine
{
public:
    VirtualClock clock;
    FakeFolders folders;
    FakeVolumes volumes;
    FakeDefaultsStore defaults;
    FakeSecretStore secrets;
    FakeComputerName computerName;
    FakeWorkspace workspace;
    FakeTransport http;
    FakeTrust trust;
    FakeMicrophone microphone;
    FakeSoundPlayer sounds;
    FakeKeyTaps keyTaps;
    FakePasteboard pasteboard{clock};
    FakeKeyPoster keyPoster{pasteboard};
    FakeLocalKeys localKeys;
    FakeActivation activation;
    FakeAppearance appearance;
    FakeFloatingPanels panels;
    FakeGraphics graphics;
    FakeAutostart autostart;
    FakeBackground background;
    FakePresence presence;

    Platform platform{clock,      folders,    volumes,  defaults,  secrets,    computerName, workspace, http,
                      trust,      microphone, sounds,   keyTaps,   keyPoster,  pasteboard,   localKeys, activation,
                      appearance, panels,     graphics, autostart, background, presence};
};
