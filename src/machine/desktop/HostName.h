#pragma once

#include "base/ComputerName.h"

/// The computer's pretty name as the desktop's settings store it, else its host name up to the first dot.
class HostName final : public ComputerName
{
public:
    /// `machineInfo` is the file described in machine-info(5), where the pretty name is kept.
    explicit HostName(QString machineInfo = QString::fromLatin1("/etc/machine-info"));

    QString localizedName() const override;

private:
    QString m_machineInfo;
};
