#pragma once

#include "platform/AccessibilityTrust.h"
#include "platform/Activation.h"
#include "platform/AppearanceListeners.h"
#include "platform/Autostart.h"
#include "platform/ComputerName.h"
#include "platform/DefaultsStore.h"
#include "platform/FloatingPanels.h"
#include "platform/Folders.h"
#include "platform/Graphics.h"
#include "platform/KeyPoster.h"
#include "platform/LocalKeys.h"
#include "platform/Pasteboard.h"
#include "platform/Platform.h"
#include "platform/SecretStore.h"
#include "platform/SoundPlayer.h"
#include "platform/Volumes.h"
#include "platform/Workspace.h"
#include "support/FakeKeyTaps.h"
#include "support/FakeMicrophone.h"
#include "support/FakeTransport.h"
#include "support/VirtualClock.h"

#include <QHash>
#include <QStringList>
#include <QTemporaryDir>

/// Preferences in memory.
class FakeDefaultsStore final : public DefaultsStore
{
public:
    QJsonValue value(const QString &key) const override { return values.value(key, QJsonValue::Undefined); }
    void setValue(const QString &key, const QJsonValue &value) override { values.insert(key, value); }
    void remove(const QString &key) override { values.remove(key); }

    QHash<QString, QJsonValue> values;
};

/// A keyring in memory that can be told to fail.
class FakeSecretStore final : public SecretStore
{
public:
    Found find(const QString &service, const QString &account) override;
    int32_t add(const QString &service, const QString &account, const QByteArray &data,
                Accessibility accessibility) override;
    int32_t remove(const QString &service, const QString &account) override;
    std::optional<QString> message(int32_t status) const override;

    QHash<QString, QByteArray> items; ///< by account
    QHash<QString, Accessibility> accessibilities;
    int32_t findStatus = SecretStatus::success; ///< anything else fails every look-up
    QStringList unreadable;                     ///< accounts whose look-up alone fails
    QStringList services;                       ///< every service asked for
    int32_t addStatus = SecretStatus::success;
    int32_t removeStatus = SecretStatus::success;
};

/// A clipboard in memory.
class FakePasteboard final : public Pasteboard
{
public:
    QCoro::Task<QList<PasteboardItem>> items() override { co_return contents; }
    bool isReachable() const override { return reachable; }
    qint64 changeCount() const override { return count; }
    void setString(const QString &text) override { setItems({{{QStringLiteral("text/plain"), text.toUtf8()}}}); }
    void setItems(const QList<PasteboardItem> &items) override
    {
        contents = items;
        ++count;
    }
    QString text() const;

    QList<PasteboardItem> contents;
    qint64 count = 1;
    bool reachable = true;
};

/// Notes what is typed.
class FakeKeyPoster final : public KeyPoster
{
public:
    QCoro::Task<bool> post(KeyChord chord) override
    {
        if (!works)
            co_return false;
        posted.append(chord);
        clipboardWhenPosted.append(pasteboard.text());
        co_return true;
    }
    explicit FakeKeyPoster(FakePasteboard &watched) : pasteboard(watched) {}

    FakePasteboard &pasteboard;
    bool works = true;
    QList<KeyChord> posted;
    QStringList clipboardWhenPosted;
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
    QString applicationSupport() const override { return m_directory.filePath(QStringLiteral("data")); }
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
    QString localizedName() const override { return QStringLiteral("Study"); }
};

class FakeActivation final : public Activation
{
public:
    void setPolicy(ActivationPolicy wanted) override { policy = wanted; }

    ActivationPolicy policy = ActivationPolicy::accessory;
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
    AppearanceListeners m_listeners;
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
    FakePasteboard pasteboard;
    FakeKeyPoster keyPoster{pasteboard};
    FakeLocalKeys localKeys;
    FakeActivation activation;
    FakeAppearance appearance;
    FakeFloatingPanels panels;
    FakeGraphics graphics;
    FakeAutostart autostart;

    Platform platform{clock,     folders,    volumes,    defaults, secrets,  computerName, workspace,
                      http,      trust,      microphone, sounds,   keyTaps,  keyPoster,    pasteboard,
                      localKeys, activation, appearance, panels,   graphics, autostart};
};
