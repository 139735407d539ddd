#include "machine/network/NetworkTransport.h"
#include "support/server/ConnectProxy.h"
#include "support/server/TlsServer.h"

#include <QCoroTask>
#include <QDir>
#include <QFile>
#include <QtTest>

using namespace Qt::StringLiterals;

/// The desktop's settings are those of a file here, read once by the libraries: one test for all.
class DesktopProxyTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDesktopsProxyIsUsedUnlessTheEnvironmentHasOne();
};

void DesktopProxyTest::theDesktopsProxyIsUsedUnlessTheEnvironmentHasOne()
{
    ConnectProxy desktop, environment;
    TlsServer server(TlsServer::Security::plain);
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(u"glib-2.0/settings"_s));
    QFile file(folder.filePath(u"glib-2.0/settings/keyfile"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray there = "host='127.0.0.1'\nport=" + QByteArray::number(desktop.serverPort()) + '\n';
    file.write("[system/proxy]\nmode='manual'\nignore-hosts=['127.0.0.0/8', '*.direct.invalid']\n"
               "[system/proxy/https]\n" +
               there + "[system/proxy/http]\n" + there);
    file.close();
    qputenv("GSETTINGS_BACKEND", "keyfile");
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    for (const char *name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy"})
        qunsetenv(name);

    NetworkTransport transport("Sayvane/0.1");
    const auto fails = [&](const QString &address) {
        const HttpRequest request{.url = QUrl(address)};
        const auto result = QCoro::waitFor(transport.send(request, {}));
        return result ? QString::number(result->status) : result.error().message;
    };
    QCOMPARE(fails(u"https://secure.invalid/"_s), u"The proxy did not connect to secure.invalid."_s);
    QCOMPARE(fails(u"https://x.direct.invalid/"_s),
             u"x.direct.invalid cannot be found. Check the internet connection."_s);
    QCOMPARE(fails(server.url(u"/"_s).toString()), u"200"_s);
    QCOMPARE(desktop.targets(), QList<QByteArray>{"secure.invalid:443"});
    qputenv("HTTPS_PROXY", environment.address());
    QCOMPARE(fails(u"https://other.invalid/"_s), u"The proxy did not connect to other.invalid."_s);
    QCOMPARE(environment.targets(), QList<QByteArray>{"other.invalid:443"});
    QCOMPARE(desktop.targets().size(), 1);
}

QTEST_GUILESS_MAIN(DesktopProxyTest)
#include "DesktopProxyTest.moc"
