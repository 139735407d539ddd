#pragma once

#include "base/KeyTap.h"
#include "machine/desktop/Guard.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// Keys of a sway session: bindings that run nothing, of which sway tells over its socket (sway-ipc(7)). They
/// are sway's for as long as it runs, and let go when we end, however we end.
///
/// Sway takes the press for itself and repeats none; another binding of the same keys is out of use until
/// sway reads its configuration again.
class SwayKeyTaps final : public QObject, public KeyTaps
{
    Q_OBJECT
public:
    /// To the sway that SWAYSOCK names.
    SwayKeyTaps();
    ~SwayKeyTaps() override;
    Q_DISABLE_COPY_MOVE(SwayKeyTaps)

    bool isOpen() const { return m_notifier != nullptr; }

    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;

private:
    class Tap;

    void watch(const QList<KeyChord> &chords);
    void guard(const QList<KeyChord> &chords);
    void send(quint32 type, const QByteArray &payload);
    void read();
    void take(quint32 type, const QByteArray &payload);
    void bind(const KeyChord &chord);
    void close();

    int m_socket = -1;
    std::unique_ptr<QSocketNotifier> m_notifier; // while sway is there
    QByteArray m_received;
    QList<KeyChord> m_bound;
    QList<KeyChord> m_guarded; // bound by now or earlier
    Tap *m_tap = nullptr;
    std::unique_ptr<Guard> m_guard;
};
