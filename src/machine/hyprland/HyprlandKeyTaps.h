#pragma once

#include "base/KeyTap.h"
#include "machine/desktop/Guard.h"

#include <QByteArray>
#include <QJsonArray>
#include <QList>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <memory>
#include <vector>

class WaylandConnection;
struct hyprland_global_shortcuts_manager_v1;

/// Keys of a Hyprland session: shortcuts of ours that the compositor tells of over Wayland
/// (hyprland_global_shortcuts_v1), and bindings of keys to them, made over its socket (as hyprctl(1) makes
/// them). They are in use for as long as they are watched, and let go when we end, however we end.
///
/// A key that the person has bound already stays theirs.
class HyprlandKeyTaps final : public QObject, public KeyTaps
{
    Q_OBJECT
public:
    /// To the compositor of the connection, which outlives this, and the sockets that
    /// HYPRLAND_INSTANCE_SIGNATURE names.
    explicit HyprlandKeyTaps(WaylandConnection &connection);
    ~HyprlandKeyTaps() override;
    Q_DISABLE_COPY_MOVE(HyprlandKeyTaps)

    bool isOpen() const { return m_events != nullptr; }

    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;
    QString holder() const override { return m_holder; }

private:
    class Tap;
    class Shortcut;

    QByteArray ask(const QByteArray &request) const;
    void tell(const QByteArray &request) const;
    QString holderOf(const KeyChord &chord) const;
    void watch(const QList<KeyChord> &chords);
    void bind(const KeyChord &chord) const;
    QByteArray unbinding(const KeyChord &chord) const;
    void guard();
    void pressed(bool isEscape, KeyEventType type);
    void readEvents();
    void close();

    QByteArray m_folder; // of its sockets
    bool m_takesLua = false;
    hyprland_global_shortcuts_manager_v1 *m_manager = nullptr;
    int m_socket = -1;                         // of its events
    std::unique_ptr<QSocketNotifier> m_events; // while it is there
    QByteArray m_received;
    std::vector<std::unique_ptr<Shortcut>> m_shortcuts;
    QList<KeyChord> m_bound;
    QList<KeyChord> m_guarded; // bound by now or earlier
    QJsonArray m_binds;        // all of the session, when the tap was installed
    QString m_holder;
    Tap *m_tap = nullptr;
    std::unique_ptr<Guard> m_guard;
};
