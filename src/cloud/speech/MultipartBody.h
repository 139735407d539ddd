#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <expected>
#include <utility>

/// A multipart/form-data upload (RFC 7578) of one recording: text fields, then the WAV file as "file".
struct MultipartBody
{
    QByteArray boundary;
    QByteArray bytes;

    QByteArray contentType() const { return "multipart/form-data; boundary=" + boundary; }

    /// Reads the file whole into the body, in one copy; the error is the file system's own.
    static std::expected<MultipartBody, QString> build(const QList<std::pair<QByteArray, QString>> &fields,
                                                       const QString &filePath);
};
