#include "cloud/speech/MultipartBody.h"

#include <QFile>
#include <QUuid>

std::expected<MultipartBody, QString>
MultipartBody::build(const QList<std::pair<QByteArray, QString>> &fields, const QString &filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return std::unexpected(file.errorString());

    MultipartBody body;
    body.boundary = "Sayvane-" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toUpper();

    QByteArray head;
    for (const auto &[name, value] : fields) {
        head += "--" + body.boundary + "\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" +
                value.toUtf8() + "\r\n";
    }
    head += "--" + body.boundary +
            "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n"
            "Content-Type: audio/wav\r\n\r\n";
    const QByteArray tail = "\r\n--" + body.boundary + "--\r\n";

    // The file is read straight to its place: no second copy of a long recording.
    const qint64 size = file.size();
    body.bytes.reserve(head.size() + size + tail.size());
    body.bytes.append(head);
    body.bytes.resize(head.size() + size);
    qint64 filled = 0;
    while (filled < size) {
        const qint64 count = file.read(body.bytes.data() + head.size() + filled, size - filled);
        if (count < 0)
            return std::unexpected(file.errorString());
        if (count == 0)
            break;
        filled += count;
    }
    body.bytes.truncate(head.size() + filled);
    body.bytes.append(tail);
    return body;
}
