#include "LoopbackService.h"

#include "service/accounts/SignInCode.h"
#include "service/machine/Certificate.h"

#include <QJsonDocument>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

std::filesystem::path ensured(const std::filesystem::path &certificate, const std::filesystem::path &key)
{
    Certificate::ensure(certificate, key, "localhost");
    return certificate;
}

} // namespace

LoopbackService::Running::Running(LoopbackService &owner, AccountRoutes::SignUps signUps)
    : accounts(owner.path("db"), owner.clock()),
      signIns(owner.path("db"), SignInCode::keyIn(owner.path("code.key")), owner.clock()),
      server(ensured(owner.path("certificate.pem"), owner.path("key.pem")), owner.path("key.pem")),
      routes(server, accounts, signIns, signUps,
             [&owner](const SignIns::Code &code, const std::string &, const std::string &device) {
                 const std::lock_guard lock(owner.m_mutex);
                 owner.m_code = QString::fromStdString(code.digits);
                 owner.m_device = QString::fromStdString(device);
                 return owner.m_outcome.load();
             }),
      labs(server, accounts, *owner.m_assistants),
      port(server.bind("127.0.0.1", 0)),
      thread([this] { server.serve(); })
{
}

LoopbackService::Running::~Running()
{
    server.end();
    thread.join();
}

LoopbackService::LoopbackService(AccountRoutes::SignUps signUps)
    : m_seconds(std::chrono::sys_seconds(std::chrono::sys_days{2026y / 2 / 28} + 12h).time_since_epoch().count()),
      m_running(std::make_unique<Running>(*this, signUps))
{
}

LoopbackService::~LoopbackService() = default;

void LoopbackService::restart(AccountRoutes::SignUps signUps)
{
    m_running.reset();
    m_running = std::make_unique<Running>(*this, signUps);
}

Exchange::Answer LoopbackService::post(const char *path, const QJsonObject &body, const QByteArray &token)
{
    return send(Exchange::request("POST "_ba + path, token, "Content-Type: application/json\r\n",
                                  QJsonDocument(body).toJson()));
}

Exchange::Answer LoopbackService::get(const char *path, const QByteArray &token)
{
    return send(Exchange::request("GET "_ba + path, token));
}

Exchange::Answer LoopbackService::send(const QByteArray &request) const
{
    const auto certificate = QSslCertificate::fromPath(m_folder.filePath(u"certificate.pem"_s)).value(0);
    return Exchange(static_cast<quint16>(m_running->port), certificate).ask(request);
}

QString LoopbackService::code(const QString &email)
{
    if (post("/v1/auth/request-code", {{u"email"_s, email}, {u"device"_s, u"Desk"_s}}).status != 200)
        return {};
    const std::lock_guard lock(m_mutex);
    return m_code;
}

QByteArray LoopbackService::signIn(const QString &email, const QString &device)
{
    return post("/v1/auth/verify", {{u"email"_s, email}, {u"code"_s, code(email)}, {u"device"_s, device}})
        .body[u"token"_s]
        .toString()
        .toUtf8();
}

QString LoopbackService::lastDevice()
{
    const std::lock_guard lock(m_mutex);
    return m_device;
}

WallClock LoopbackService::clock() const
{
    return [this] { return std::chrono::sys_seconds(std::chrono::seconds(m_seconds)); };
}
