#include "machine/desktop/PreferencesFile.h"

#include "base/AtomicFile.h"
#include "machine/desktop/XdgFolders.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLoggingCategory>

#include <cmath>
#include <expected>
#include <filesystem>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(preferencesLog, "com.sayvane.app.preferences")

bool isStorable(const QJsonValue &value)
{
    return value.isString() || value.isBool() || (value.isDouble() && std::isfinite(value.toDouble()));
}

QJsonObject storableOf(const QJsonObject &object)
{
    QJsonObject kept;
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (isStorable(it.value()))
            kept.insert(it.key(), it.value());
    }
    return kept;
}

/// The file's bytes, none when there is no file; the error is a sentence for the log.
std::expected<std::optional<QByteArray>, QString> contentsOf(const QString &path)
{
    std::error_code error;
    const auto kind = std::filesystem::status(QFile::encodeName(path).toStdString(), error).type();
    if (kind == std::filesystem::file_type::not_found)
        return std::nullopt;
    if (kind != std::filesystem::file_type::regular)
        return std::unexpected(error ? QString::fromStdString(error.message()) : u"It is no file."_s);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::unexpected(file.errorString());
    QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError)
        return std::unexpected(file.errorString());
    return bytes;
}

} // namespace

PreferencesFile::PreferencesFile(QString folder, const Clock &clock)
    : m_folder(std::move(folder)),
      m_path(m_folder + u"/preferences.json"_s),
      m_clock(clock)
{
}

QJsonObject &PreferencesFile::values() const
{
    if (!m_isRead) {
        m_isRead = true;
        load();
    }
    return m_values;
}

void PreferencesFile::load() const
{
    const auto contents = contentsOf(m_path);
    if (!contents) {
        m_writing = Writing::off;
        qCWarning(preferencesLog).noquote()
            << m_path << "cannot be read, so changes are kept in memory only:" << contents.error();
        return;
    }
    if (!contents->has_value())
        return;

    const QJsonDocument document = QJsonDocument::fromJson(**contents);
    const QJsonObject stored = document.object();
    m_values = storableOf(stored);
    if (document.isObject() && m_values.size() == stored.size())
        return;
    if (!moveAside()) {
        m_writing = Writing::off;
        return;
    }
    if (!m_values.isEmpty())
        write();
}

bool PreferencesFile::moveAside() const
{
    const QString target = QFileInfo(m_path).canonicalFilePath();
    const QString date = m_clock.now().toUTC().toString(u"yyyyMMdd-HHmmss"_s);
    QString aside = u"%1/preferences-corrupt-%2.json"_s.arg(m_folder, date);
    for (int copy = 2; QFileInfo::exists(aside); ++copy)
        aside = u"%1/preferences-corrupt-%2-%3.json"_s.arg(m_folder, date).arg(copy);

    QFile file(target);
    if (!file.rename(aside)) {
        qCWarning(preferencesLog).noquote()
            << m_path << "is damaged and cannot be moved aside, so changes are kept in memory only:"
            << file.errorString();
        return false;
    }
    qCWarning(preferencesLog).noquote() << m_path << "was damaged and is kept as" << aside;
    return true;
}

QJsonValue PreferencesFile::value(const QString &key) const
{
    return values().value(key);
}

void PreferencesFile::setValue(const QString &key, const QJsonValue &value)
{
    if (!isStorable(value)) {
        qCWarning(preferencesLog) << "A value that is no text, boolean or number was refused for" << key;
        return;
    }
    const QJsonValue stored = values().value(key);
    if (stored == value)
        return;
    values().insert(key, value);
    write();
}

void PreferencesFile::remove(const QString &key)
{
    if (!values().contains(key))
        return;
    values().remove(key);
    write();
}

void PreferencesFile::write() const
{
    if (m_writing == Writing::off)
        return;
    if (!QFileInfo(m_folder).isDir())
        PrivateFolder::ensure(m_folder);
    if (const auto saved = AtomicFile::replace(m_path, QJsonDocument(m_values).toJson()); !saved) {
        qCWarning(preferencesLog).noquote()
            << m_path << "cannot be written, so changes are kept in memory only:" << saved.error();
    }
}
