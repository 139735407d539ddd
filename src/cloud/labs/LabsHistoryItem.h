#pragma once

#include "cloud/labs/LabsMode.h"
#include "cloud/labs/LabsProvider.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QUuid>

/// One exchange with an assistant, kept in memory only.
struct LabsHistoryItem
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id CONSTANT)
    Q_PROPERTY(QDateTime date MEMBER date CONSTANT)
    Q_PROPERTY(QString provider READ providerTitle CONSTANT)
    Q_PROPERTY(QString mode READ modeTitle CONSTANT)
    Q_PROPERTY(QString prompt MEMBER prompt CONSTANT)
    Q_PROPERTY(QString text MEMBER text CONSTANT)
public:
    QUuid id;
    QDateTime date; ///< of the answer
    LabsProvider provider = LabsProvider::claude;
    LabsMode mode = LabsMode::answer;
    QString prompt; ///< as sent
    QString text;   ///< of the answer

    bool operator==(const LabsHistoryItem &) const = default;

private:
    QString providerTitle() const { return LabsProviderNames::title(provider); }
    QString modeTitle() const { return LabsModes::title(mode); }
};
