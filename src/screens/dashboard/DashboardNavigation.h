#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

/// The screens of the dashboard, in the order of its sidebar.
class DashboardSection
{
    Q_GADGET
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString symbol READ symbol CONSTANT)
    Q_PROPERTY(QStringList tileColours READ tileColours CONSTANT)
    Q_PROPERTY(QString id READ rawValue CONSTANT)
public:
    enum Id { dictation, insights, dictionary, labs, settings };
    Q_ENUM(Id)

    static constexpr std::array allCases{dictation, insights, dictionary, labs, settings};

    DashboardSection() = default;
    DashboardSection(Id id) : m_id(id) {} // NOLINT(google-explicit-constructor): it is one

    Id id() const { return m_id; }
    /// The name of its case, which identifies it.
    QString rawValue() const;
    QString title() const;
    QString symbol() const;
    /// Top left and bottom right, as "#rrggbb".
    QStringList tileColours() const;

    /// The section of that raw value; none for any other text.
    static std::optional<DashboardSection> fromRawValue(const QString &rawValue);

    bool operator==(const DashboardSection &) const = default;

private:
    Id m_id = dictation;

    Q_DECLARE_TR_FUNCTIONS(DashboardSection)
};

/// Which screen the dashboard shows. Anybody may send the user to another one; it outlives the window.
class DashboardNavigation : public QObject
{
    Q_OBJECT
    /// As raw value.
    Q_PROPERTY(QString section READ sectionId WRITE setSectionId NOTIFY changed)
public:
    DashboardSection section() const { return m_section; }
    void setSection(DashboardSection section);

Q_SIGNALS:
    void changed();

private:
    QString sectionId() const { return m_section.rawValue(); }
    void setSectionId(const QString &id)
    {
        setSection(DashboardSection::fromRawValue(id).value_or(m_section));
    }

    DashboardSection m_section;
};
