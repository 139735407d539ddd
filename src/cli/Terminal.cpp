#include "cli/Terminal.h"

#include <QByteArray>

#include <cstdio>

bool Terminal::print(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    return std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout) ==
               static_cast<size_t>(bytes.size()) &&
           std::fflush(stdout) == 0;
}

int Terminal::complain(const QString &sentence, int status)
{
    std::fprintf(stderr, "sayvane: %s\n", sentence.toUtf8().constData());
    return status;
}

std::optional<QString> Terminal::ask(const QString &question)
{
    std::fprintf(stderr, "%s ", question.toUtf8().constData());
    QByteArray line;
    for (int c = std::getchar(); c != '\n'; c = std::getchar()) {
        if (c == EOF)
            return std::nullopt;
        line += static_cast<char>(c);
    }
    return QString::fromUtf8(line).trimmed();
}
