#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>

/// A certificate made on the spot, with its private key, both in PEM.
struct TestCertificate
{
    struct Wish
    {
        QByteArray name = "127.0.0.1"; ///< a host name or an address
        QDateTime validFrom = QDateTime::currentDateTimeUtc().addDays(-1);
        QDateTime validUntil = QDateTime::currentDateTimeUtc().addDays(1);
    };

    QByteArray certificate;
    QByteArray key;

    /// An authority that signs others.
    static TestCertificate authority(const QByteArray &name = "Test authority");
    /// A server's certificate signed by that authority.
    TestCertificate issue(const Wish &wish) const;
    static TestCertificate selfSigned(const Wish &wish);

    /// The file name under which it is found in a folder of trusted certificates.
    QByteArray hashedName() const;
};
