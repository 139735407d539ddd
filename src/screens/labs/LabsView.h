#pragma once

#include "base/FlowState.h"
#include "cloud/labs/LabsAnswerMode.h"
#include "cloud/labs/LabsMode.h"
#include "cloud/labs/LabsSession.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QVariantList>

#include <functional>
#include <stop_token>

class Pasteboard;
class TextInserter;

/// Speaking a prompt instead of typing it, as the flow controller offers it.
struct PromptDictation
{
    std::function<FlowState()> state;
    /// Records a dictation whose text goes to the callback; only when idle.
    std::function<void(std::function<void(const QString &)> into)> captureNextTranscript;
    /// Ends the recording and sends it on its way.
    std::function<void()> finishRecording;
};

/// What the Labs screen says in each mode.
struct LabsTexts
{
    static QString hint(LabsMode mode);
    static QString promptLabel(LabsMode mode);
    /// Empty in the mode that takes no text besides the prompt.
    static QString contextLabel(LabsMode mode);

    /// Who answered, by the service's names for assistant and model.
    static QString heading(const QString &provider, const QString &model);

    Q_DECLARE_TR_FUNCTIONS(LabsTexts)
};

/// The Labs screen: which assistant is asked, in which way, and what becomes of its answer. What is written
/// and answered lives in the session; this holds no state of its own.
class LabsView final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(LabsSession *session READ session CONSTANT)
    Q_PROPERTY(LabsAnswerMode *answerMode READ answerMode CONSTANT)
    Q_PROPERTY(bool usable READ usable NOTIFY changed)
    /// Lists of {value, text}.
    Q_PROPERTY(QVariantList providers READ providers NOTIFY changed)
    Q_PROPERTY(QVariantList modes READ modes CONSTANT)
    Q_PROPERTY(QString selectedProvider READ selectedRaw WRITE selectProvider NOTIFY changed)
    Q_PROPERTY(QString providersNotice READ providersNotice NOTIFY changed)
    Q_PROPERTY(QString modeHint READ modeHint NOTIFY changed)
    Q_PROPERTY(QString promptLabel READ promptLabel NOTIFY changed)
    Q_PROPERTY(QString promptCount READ promptCount NOTIFY changed)
    Q_PROPERTY(QString contextLabel READ contextLabel NOTIFY changed)
    Q_PROPERTY(QString contextCount READ contextCount NOTIFY changed)
    Q_PROPERTY(bool dictating READ dictating NOTIFY changed)
    Q_PROPERTY(bool transcribing READ transcribing NOTIFY changed)
    Q_PROPERTY(bool hasAnswer READ hasAnswer NOTIFY changed)
    Q_PROPERTY(QString answerHeading READ answerHeading NOTIFY changed)
    Q_PROPERTY(QString answerText READ answerText NOTIFY changed)
    Q_PROPERTY(QString answerModeCaption READ answerModeCaption NOTIFY changed)
    Q_PROPERTY(bool canSwitchAnswerMode READ canSwitchAnswerMode NOTIFY changed)
public:
    struct Collaborators
    {
        LabsSession &session;
        LabsAnswerMode &answerMode;
        Prefs &prefs;
        Pasteboard &pasteboard;
        TextInserter &inserter;
        PromptDictation dictation;
        /// Shows the settings in the dashboard.
        std::function<void()> openSettings;
    };
    explicit LabsView(const Collaborators &with);
    ~LabsView() override;

    LabsSession *session() { return &m_session; }
    LabsAnswerMode *answerMode() { return &m_answerMode; }

    /// Whether dictations go to the hosted service, which alone offers assistants.
    bool usable() const;

    QVariantList providers() const;
    static QVariantList modes();
    LabsProvider selectedProvider() const { return m_session.selectedProvider(); }
    void selectProvider(const QString &rawValue);
    /// Why there is nobody to ask; empty while there is, or while that is being found out.
    QString providersNotice() const;

    QString modeHint() const;
    QString promptLabel() const;
    QString promptCount() const;
    /// Empty in the mode that takes no text besides the prompt.
    QString contextLabel() const;
    QString contextCount() const;

    bool dictating() const { return m_dictation.state() == FlowState::recording; }
    bool transcribing() const { return m_dictation.state() == FlowState::processing; }

    bool hasAnswer() const { return m_session.answer().has_value(); }
    QString answerHeading() const;
    QString answerText() const;
    QString answerModeCaption() const;
    /// On only while there is somebody to ask, off at any time.
    bool canSwitchAnswerMode() const;

    /// The screen has come into view.
    Q_INVOKABLE void appear();
    Q_INVOKABLE void openSettings();
    /// Starts to dictate the prompt, or ends it.
    Q_INVOKABLE void dictate();
    Q_INVOKABLE void ask();
    Q_INVOKABLE void copyAnswer();
    /// Copies the answer and pastes it into whatever application is in front.
    Q_INVOKABLE void pasteAnswer();

public Q_SLOTS:
    void flowStateChanged() { Q_EMIT changed(); }

Q_SIGNALS:
    void changed();

private:
    QString selectedRaw() const { return LabsProviderNames::rawValue(selectedProvider()); }
    QCoro::Task<> paste(QString text, std::stop_token stop);

    LabsSession &m_session;
    LabsAnswerMode &m_answerMode;
    Prefs &m_prefs;
    Pasteboard &m_pasteboard;
    TextInserter &m_inserter;
    PromptDictation m_dictation;
    std::function<void()> m_openSettings;
    std::stop_source m_stop; // stopped when the screen goes away
};
