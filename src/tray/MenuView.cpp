#include "tray/MenuView.h"

#include "base/Pasteboard.h"
#include "base/Text.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/labs/LabsAnswerMode.h"
#include "dictation/FlowController.h"
#include "history/HistoryStore.h"
#include "preferences/Prefs.h"
#include "preferences/SpokenLanguage.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestEmail = 32;
constexpr int longestTitle = 70;
constexpr qsizetype historyEntries = 15;

using Kind = MenuEntry::Kind;

MenuEntry text(const QString &name, const QString &line)
{
    return {.kind = Kind::text, .name = name, .text = line};
}

MenuEntry button(const QString &name, const QString &title, std::function<void()> action,
                 const QString &shortcut = {})
{
    return {
        .kind = Kind::button, .name = name, .text = title, .action = std::move(action), .shortcut = shortcut};
}

/// The first characters and an ellipsis, where the text is longer than it may be.
QString cut(const QString &whole, int longest, int kept)
{
    return Text::firstCharacters(whole, longest) == whole ? whole : Text::firstCharacters(whole, kept) + u'…';
}

} // namespace

MenuView::MenuView(const Observed &observed, ShellCommands commands)
    : m_flow(observed.flow),
      m_history(observed.history),
      m_account(observed.account),
      m_answerMode(observed.answerMode),
      m_prefs(observed.prefs),
      m_pasteboard(observed.pasteboard),
      m_commands(std::move(commands))
{
    for (const auto signal : {&FlowController::stateChanged, &FlowController::lastTranscriptChanged,
                              &FlowController::historyChanged, &FlowController::hotkeyActiveChanged,
                              &FlowController::lastErrorChanged})
        connect(&m_flow, signal, this, &MenuView::changed);
    connect(&m_history, &HistoryStore::recordsChanged, this, &MenuView::changed);
    connect(&m_account, &AccountStatus::changed, this, &MenuView::changed);
    connect(&m_answerMode, &LabsAnswerMode::enabledChanged, this, &MenuView::changed);
    for (const auto signal : {&Prefs::languageChanged, &Prefs::providerChanged, &Prefs::hotkeySpecChanged})
        connect(&m_prefs, signal, this, &MenuView::changed);
}

QString MenuView::symbolFor(FlowState state)
{
    switch (state) {
    case FlowState::idle:
        return u"waveform"_s;
    case FlowState::recording:
        return u"record.circle.fill"_s;
    case FlowState::processing:
        return u"ellipsis.circle"_s;
    }
    Q_UNREACHABLE();
}

QString MenuView::stateLine(FlowState state)
{
    switch (state) {
    case FlowState::idle:
        return tr("Sayvane: ready");
    case FlowState::recording:
        return tr("● Listening…");
    case FlowState::processing:
        return tr("Transcribing…");
    }
    Q_UNREACHABLE();
}

QList<MenuEntry> MenuView::entries() const
{
    QList<MenuEntry> entries{button(u"open"_s, tr("Open Sayvane"), m_commands.openDashboard), MenuEntry(),
                             text(u"state"_s, stateLine(m_flow.state()))};
    appendFacts(entries);
    entries.append(MenuEntry());
    appendDictation(entries);
    if (m_flow.lastError()) {
        entries.append(MenuEntry());
        entries.append(text(u"error"_s, u"⚠️ "_s + *m_flow.lastError()));
    }
    entries.append(MenuEntry());
    entries.append(button(u"settings"_s, tr("Settings"), m_commands.openSettings, u"Ctrl+,"_s));
    entries.append(button(u"quit"_s, tr("Quit Sayvane"), m_commands.quit, u"Ctrl+Q"_s));
    return entries;
}

void MenuView::appendFacts(QList<MenuEntry> &entries) const
{
    if (m_prefs.provider() == Provider::sayvane)
        appendAccount(entries);
    entries.append(text(u"language"_s, SpokenLanguage::nameFor(m_prefs.language())));
    entries.append(text(u"shortcut"_s, tr("%1 to start / stop").arg(m_prefs.hotkeySpec().displayString())));
    if (!m_history.records().isEmpty()) {
        const Dictation &newest = m_history.records().first();
        if (newest.transcribeMs) {
            const auto total = static_cast<double>(*newest.transcribeMs + newest.cleanupMs.value_or(0));
            entries.append(
                text(u"lasted"_s, tr("Last dictation: %1 s").arg(Decimal::format(total / 1000, 1))));
        }
    }
    if (!m_flow.hotkeyActive())
        entries.append(text(u"inactive"_s, tr("⚠️ Hotkey inactive: grant Accessibility")));
}

void MenuView::appendAccount(QList<MenuEntry> &entries) const
{
    if (m_answerMode.enabled())
        entries.append(text(u"answerMode"_s, tr("Answer mode on")));
    const QString email = m_account.email().value_or(QString());
    if (m_account.signedIn() && !email.isEmpty())
        entries.append(text(u"email"_s, cut(email, longestEmail, longestEmail - 1)));
    if (const auto seconds = m_account.remainingSeconds())
        entries.append(text(u"minutes"_s, tr("%1 left today").arg(AccountStatus::minutesText(*seconds))));
}

void MenuView::appendDictation(QList<MenuEntry> &entries) const
{
    MenuEntry dictate =
        button(u"dictate"_s,
               m_flow.state() == FlowState::recording ? tr("Stop & Transcribe") : tr("Start Dictation"),
               [&flow = m_flow] { flow.toggle(); });
    dictate.enabled = m_flow.state() != FlowState::processing;
    entries.append(dictate);
    if (!m_flow.lastTranscript().isEmpty())
        entries.append(
            button(u"copy"_s, tr("Copy Last Transcript"), [this] { copy(m_flow.lastTranscript()); }));
    if (!m_flow.history().isEmpty())
        entries.append(historyMenu());
}

MenuEntry MenuView::historyMenu() const
{
    MenuEntry menu{.kind = Kind::submenu, .name = u"history"_s, .text = tr("History")};
    const QStringList &texts = m_flow.history();
    for (const QString &whole : texts.first(std::min(historyEntries, texts.size())))
        menu.submenu.append(
            button(whole, cut(whole, longestTitle, longestTitle), [this, whole] { copy(whole); }));
    return menu;
}

void MenuView::copy(const QString &text) const
{
    m_pasteboard.setString(text);
    if (!m_pasteboard.isReachable())
        m_commands.openDashboard(); // a window with the keyboard reaches it
}
