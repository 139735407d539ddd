#pragma once

#include "base/Provider.h"

#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QStringList>

#include <stop_token>

class Prefs;
class Transcriber;

/// Asks the chosen provider which models it serves, and takes valid ones into use.
class ConnectionTest final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString connectionStatus READ connectionStatus NOTIFY changed)
    Q_PROPERTY(QString connectionDetail READ connectionDetail NOTIFY changed)
    Q_PROPERTY(QString connectionError READ connectionError NOTIFY changed)
    Q_PROPERTY(bool testingConnection READ testingConnection NOTIFY changed)
public:
    ConnectionTest(Prefs &prefs, Transcriber &transcriber);
    ~ConnectionTest() override;

    /// The result's lines; empty without one.
    const QString &connectionStatus() const { return m_connectionStatus; }
    const QString &connectionDetail() const { return m_connectionDetail; }
    const QString &connectionError() const { return m_connectionError; }
    bool testingConnection() const { return m_testingConnection; }

    /// A test that is under way is given up for the new one.
    Q_INVOKABLE void testConnection();
    void clearConnectionResult();

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> test(Provider provider, std::stop_token stop);
    void applyResolvedModels(const QStringList &available, Provider provider);

    Prefs &m_prefs;
    Transcriber &m_transcriber;
    QString m_connectionStatus;
    QString m_connectionDetail;
    QString m_connectionError;
    bool m_testingConnection = false;
    std::stop_source m_stop; // stopped when the form goes away
};
