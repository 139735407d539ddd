#pragma once

#include <QDate>
#include <QObject>
#include <QString>
#include <QVariantList>

#include <memory>

class Clock;
class Credentials;
class DashboardNavigation;
class Prefs;
class Timer;

/// The frame around the screens: the sections, and the banner while the provider cannot be used.
class DashboardView final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantList sections READ sections CONSTANT)
    Q_PROPERTY(bool hasCredential READ hasCredential NOTIFY changed)
    Q_PROPERTY(QString bannerMessage READ bannerMessage NOTIFY changed)
    /// Whether the window is on the screen; only then does anything tick.
    Q_PROPERTY(bool shown READ isShown NOTIFY changed)
public:
    struct Needs
    {
        Clock &clock;
        Prefs &prefs;
        const Credentials &credentials;
        DashboardNavigation &navigation;
    };
    explicit DashboardView(const Needs &needs);
    ~DashboardView() override;

    QVariantList sections() const;
    bool hasCredential() const { return m_hasCredential; }
    QString bannerMessage() const;
    bool isShown() const { return m_ticker != nullptr; }
    void setShown(bool shown);

    /// Where the missing credential is entered.
    Q_INVOKABLE void openSettings();

Q_SIGNALS:
    void changed();
    /// The window is about to close, and with it what the screens look like.
    void closing();
    /// The window is shown again, or midnight has passed: what speaks of today is out of date.
    void dayBegan();

private:
    bool usesOwnKey() const;
    void tick();
    void refreshCredential();
    QDate today() const;

    Needs m_needs;
    bool m_hasCredential;
    QDate m_day;
    std::unique_ptr<Timer> m_ticker;
};
