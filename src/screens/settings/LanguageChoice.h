#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

class Prefs;

/// Which language the user dictates in: one of the list, or any other by its code.
class LanguageChoice final : public QObject
{
    Q_OBJECT
    /// Maps of "value" and "text", those of the list first, "other" last.
    Q_PROPERTY(QVariantList entries READ entries CONSTANT)
    Q_PROPERTY(QString selection READ selection WRITE select NOTIFY changed)
    Q_PROPERTY(bool showsOther READ showsOther NOTIFY changed)
    Q_PROPERTY(QString code READ code WRITE setCode NOTIFY changed)
public:
    explicit LanguageChoice(Prefs &prefs);

    static QVariantList entries();

    /// "other", or the stored code trimmed and in lower case.
    QString selection() const;
    /// Takes a code of the list, or "other", which leaves the stored code as it is.
    void select(const QString &tag);

    /// Whether the field for a code is shown.
    bool showsOther() const;

    QString code() const;
    /// Stores the code trimmed and in lower case.
    void setCode(const QString &text);

Q_SIGNALS:
    void changed();

private:
    Prefs &m_prefs;
    bool m_wantsOtherLanguage = false;
};
