#pragma once

#include "base/KeyTap.h"
#include "machine/desktop/GlibThread.h"
#include "machine/desktop/Guard.h"

#include <QList>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>

class GnomeConsent;

/// Keys of a GNOME session on Wayland: custom shortcuts among the user's keyboard settings, for which the
/// settings daemon runs a command that tells us. It takes the key for itself and tells of no release; held,
/// it runs the command again and again.
///
/// The shortcuts are there while they are watched, and out of use after a crash.
class GnomeShortcuts final : public QObject, public KeyTaps
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.sayvane.Keys1")
public:
    /// Nothing is written without the consent.
    explicit GnomeShortcuts(const GnomeConsent &consent);
    ~GnomeShortcuts() override;
    Q_DISABLE_COPY_MOVE(GnomeShortcuts)

    /// Whether the session's keyboard settings can be had.
    bool isOffered() const { return m_list != nullptr; }

    /// Which of the desktop's own shortcuts, or the user's, has these keys already, by the name that the
    /// settings give it; empty for none.
    static QString holderOf(const KeyChord &chord);

    /// Takes ours out of the settings for good; false where there are none.
    bool remove();

    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;

    /// Told by the command of a shortcut, by the name of what it does.
    Q_SCRIPTABLE void Pressed(const QString &action);

private:
    class Tap;
    /// A custom shortcut.
    struct Entry
    {
        QString action;
        KeyChord chord; ///< of which one alone is wanted for each
        std::chrono::steady_clock::time_point lastTold;
    };

    void watch(std::span<const KeyChord> chords);
    void write(const QString &action, const QString &binding);
    void list(const QString &action, bool isListed);

    const GnomeConsent &m_consent;
    GlibPointer<GSettings> m_list; // the settings daemon's list of custom shortcuts
    QList<Entry> m_entries;
    Tap *m_tap = nullptr;
    std::unique_ptr<Guard> m_guard;
};
