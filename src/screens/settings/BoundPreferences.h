#pragma once

#include <QObject>
#include <QString>

class Defaults;

/// The preferences that controls edit directly: a change is stored at once, and one made elsewhere shows at
/// once.
class BoundPreferences final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool cleanupEnabled READ cleanupEnabled WRITE setCleanupEnabled NOTIFY changed)
    Q_PROPERTY(bool restoreClipboard READ restoreClipboard WRITE setRestoreClipboard NOTIFY changed)
    Q_PROPERTY(bool soundsEnabled READ soundsEnabled WRITE setSoundsEnabled NOTIFY changed)
    Q_PROPERTY(
        bool showDashboardOnLaunch READ showDashboardOnLaunch WRITE setShowDashboardOnLaunch NOTIFY changed)
    Q_PROPERTY(bool advancedExpanded READ advancedExpanded WRITE setAdvancedExpanded NOTIFY changed)
    Q_PROPERTY(QString vocabulary READ vocabulary WRITE setVocabulary NOTIFY changed)
    Q_PROPERTY(QString transcriptionModel READ transcriptionModel WRITE setTranscriptionModel NOTIFY changed)
    Q_PROPERTY(QString chatModel READ chatModel WRITE setChatModel NOTIFY changed)
public:
    explicit BoundPreferences(Defaults &defaults);

    bool cleanupEnabled() const;
    void setCleanupEnabled(bool on);
    bool restoreClipboard() const;
    void setRestoreClipboard(bool on);
    bool soundsEnabled() const;
    void setSoundsEnabled(bool on);
    bool showDashboardOnLaunch() const;
    void setShowDashboardOnLaunch(bool on);
    bool advancedExpanded() const;
    void setAdvancedExpanded(bool on);

    /// As stored, commas and all.
    QString vocabulary() const;
    void setVocabulary(const QString &terms);
    QString transcriptionModel() const;
    void setTranscriptionModel(const QString &model);
    QString chatModel() const;
    void setChatModel(const QString &model);

Q_SIGNALS:
    void changed();

private:
    Defaults &m_defaults;
};
