#pragma once

#include "base/Clock.h"
#include "base/DefaultsStore.h"

#include <QJsonObject>

/// The preferences as one JSON object in `preferences.json`, read once, when first asked for, and replaced
/// whole on every change. A link in its place stays a link; its target is replaced.
///
/// What cannot be understood is moved aside to `preferences-corrupt-DATE.json` beside it; the texts,
/// booleans and numbers of an object that also holds other things are kept. A file that can be neither
/// read nor moved aside is left alone: nothing is written until the next start.
class PreferencesFile final : public DefaultsStore
{
public:
    /// Touches nothing: what a command does not ask for may belong to a program that runs. The folder is made
    /// when something is first written.
    PreferencesFile(QString folder, const Clock &clock);

    QJsonValue value(const QString &key) const override;
    /// Anything but a text, a boolean or a finite number is refused, with a line in the log.
    void setValue(const QString &key, const QJsonValue &value) override;
    void remove(const QString &key) override;

private:
    enum class Writing { on, off };

    QJsonObject &values() const;
    void load() const;
    bool moveAside() const;
    void write() const;

    QString m_folder;
    QString m_path;
    const Clock &m_clock;
    mutable bool m_isRead = false;
    mutable QJsonObject m_values;
    mutable Writing m_writing = Writing::on;
};
