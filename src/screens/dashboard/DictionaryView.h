#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QStringListModel>

class Prefs;

/// The custom vocabulary as a list of terms; the preference behind it is one text with commas.
class DictionaryView final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QStringListModel *rows READ rows CONSTANT)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY changed)
    Q_PROPERTY(QString newTerm READ newTerm WRITE setNewTerm NOTIFY changed)
    Q_PROPERTY(bool canAdd READ canAdd NOTIFY changed)
public:
    explicit DictionaryView(Prefs &prefs);

    /// In stored order, trimmed; doubles stay.
    QStringList terms() const;
    QStringListModel *rows() { return &m_rows; }
    bool isEmpty() const { return m_rows.rowCount() == 0; }

    QString newTerm() const { return m_newTerm; }
    void setNewTerm(const QString &term);
    bool canAdd() const { return !m_newTerm.trimmed().isEmpty(); }

    /// Appends the typed term, its commas as spaces, unless it is listed already in whatever case.
    Q_INVOKABLE void add();
    /// Removes every term that is exactly this one.
    Q_INVOKABLE void remove(const QString &term);

Q_SIGNALS:
    void changed();

private:
    void store(const QStringList &terms);
    void refresh();

    Prefs &m_prefs;
    QString m_newTerm;
    QStringListModel m_rows;
};
