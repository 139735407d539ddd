#pragma once

#include <QObject>

class DefaultsStore;

/// Whether the user lets us have a shortcut among the keyboard settings of GNOME and its remote control.
/// Asked once, by a notification with two buttons; the answer is kept with the preferences.
class GnomeConsent final : public QObject
{
    Q_OBJECT
public:
    explicit GnomeConsent(DefaultsStore &store) : m_store(store) {}

    bool isGiven() const;
    /// Asks, unless there is an answer already or the question stands.
    void ask();
    /// Asks, whatever was answered before.
    void askAgain();
    /// Forgets the answer; false where there was none.
    bool forget();

private:
    Q_SLOT void answered(uint id, const QString &action);
    Q_SLOT void closed(uint id, uint reason);

    DefaultsStore &m_store;
    uint m_question = 0; // the desktop's name of the notification; 0 for none
    bool m_isAsking = false;
};
