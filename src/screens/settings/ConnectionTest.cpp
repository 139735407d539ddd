#include "screens/settings/ConnectionTest.h"

#include "preferences/Prefs.h"
#include "cloud/speech/ConnectionResult.h"
#include "cloud/speech/Transcriber.h"

ConnectionTest::ConnectionTest(Prefs &prefs, Transcriber &transcriber)
    : m_prefs(prefs),
      m_transcriber(transcriber)
{
}

ConnectionTest::~ConnectionTest()
{
    m_stop.request_stop();
}

void ConnectionTest::testConnection()
{
    m_stop.request_stop();
    m_stop = {};
    m_testingConnection = true;
    clearConnectionResult();
    test(m_prefs.provider(), m_stop.get_token());
}

QCoro::Task<> ConnectionTest::test(Provider provider, std::stop_token stop)
{
    const auto models = co_await m_transcriber.listModels(provider, stop);
    if (stop.stop_requested())
        co_return;
    m_testingConnection = false;
    if (m_prefs.provider() == provider) {
        if (models)
            applyResolvedModels(*models, provider);
        else
            m_connectionError = models.error().description;
    }
    Q_EMIT changed();
}

void ConnectionTest::applyResolvedModels(const QStringList &available, Provider provider)
{
    const ConnectionResult result = ConnectionResult::applyResolvedModels(
        available, provider, m_prefs.transcriptionModel(), m_prefs.chatModel());
    if (result.transcriptionModel)
        m_prefs.setModel(*result.transcriptionModel, ModelPurpose::transcription);
    if (result.chatModel)
        m_prefs.setModel(*result.chatModel, ModelPurpose::chat);
    m_connectionError.clear();
    m_connectionStatus = result.status;
    m_connectionDetail = result.detail;
}

void ConnectionTest::clearConnectionResult()
{
    m_connectionStatus.clear();
    m_connectionDetail.clear();
    m_connectionError.clear();
    Q_EMIT changed();
}
