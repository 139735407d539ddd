#pragma once

#include <QObject>
#include <QString>

/// A floating panel that is no window of Qt's, for screen readers: one notification.
class SpokenPanel final : public QObject
{
    Q_OBJECT
public:
    SpokenPanel();

    /// Tells listening screen readers.
    void announce(const QString &text);
    void setShown(bool isShown) { m_isShown = isShown; }

    const QString &text() const { return m_text; }
    bool isShown() const { return m_isShown; }

private:
    QString m_text;
    bool m_isShown = false;
};
