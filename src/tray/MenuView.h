#pragma once

#include "base/FlowState.h"
#include "tray/MenuEntry.h"

#include <QObject>

#include <functional>

class AccountStatus;
class FlowController;
class HistoryStore;
class LabsAnswerMode;
class Pasteboard;
class Prefs;

/// What the windowless part of the program can ask of the part with windows.
struct ShellCommands
{
    std::function<void()> openDashboard;
    std::function<void()> openSettings;
    std::function<void()> quit;
};

/// The menu of the tray: what it holds at this moment, and when that changed.
///
/// It keeps nothing: every `entries()` looks afresh, and nothing happens between changes.
class MenuView final : public QObject
{
    Q_OBJECT
public:
    struct Observed
    {
        FlowController &flow;
        const HistoryStore &history;
        const AccountStatus &account;
        const LabsAnswerMode &answerMode;
        const Prefs &prefs;
        Pasteboard &pasteboard;
    };
    MenuView(const Observed &observed, ShellCommands commands);

    /// The entries from top to bottom.
    QList<MenuEntry> entries() const;

    /// The symbol that stands for the program in this state, by name.
    static QString symbolFor(FlowState state);
    /// What the program is doing, in words.
    static QString stateLine(FlowState state);

Q_SIGNALS:
    void changed();

private:
    void appendFacts(QList<MenuEntry> &entries) const;
    void appendAccount(QList<MenuEntry> &entries) const;
    void appendDictation(QList<MenuEntry> &entries) const;
    MenuEntry historyMenu() const;
    void copy(const QString &text) const;

    FlowController &m_flow;
    const HistoryStore &m_history;
    const AccountStatus &m_account;
    const LabsAnswerMode &m_answerMode;
    const Prefs &m_prefs;
    Pasteboard &m_pasteboard;
    ShellCommands m_commands;
};
