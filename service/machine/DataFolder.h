#pragma once

#include <filesystem>

/// The folder that holds everything the service keeps: database, certificate, private keys.
///
/// Only its owner may look into it; one of another owner is refused.
class DataFolder
{
public:
    /// Makes the folder when it is missing. Throws std::runtime_error when it cannot be used.
    explicit DataFolder(const std::filesystem::path &path);
    ~DataFolder();
    DataFolder(const DataFolder &) = delete;
    DataFolder &operator=(const DataFolder &) = delete;

    /// `$XDG_DATA_HOME/sayvane-service`, or its default below the home folder.
    static std::filesystem::path usual();

    /// Keeps a second server away until this object dies; throws when one has come first.
    void lockForServing();

    std::filesystem::path database() const { return m_path / "service.sqlite"; }
    std::filesystem::path codeKey() const { return m_path / "code.key"; }
    std::filesystem::path labs() const { return m_path / "labs.json"; }
    std::filesystem::path certificate() const { return m_path / "certificate.pem"; }
    std::filesystem::path privateKey() const { return m_path / "key.pem"; }

private:
    std::filesystem::path m_path;
    int m_lock = -1;
};
