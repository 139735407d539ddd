#include "cli/RemoteCommand.h"

#include "cli/CommandContext.h"
#include "cli/ExitCode.h"
#include "cli/Terminal.h"

#include <QDBusArgument>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

QString statusText(const QVariantMap &status)
{
    QString text = status.value(u"state"_s).toString() + u'\n';
    for (auto fact = status.cbegin(); fact != status.cend(); ++fact) {
        if (fact.key() != "state"_L1)
            text += u"%1: %2\n"_s.arg(fact.key(), fact->toString());
    }
    return text;
}

} // namespace

int RemoteCommand::run(const CommandContext &context)
{
    static const QHash<QString, QString> methods{
        {u"toggle"_s, u"Toggle"_s}, {u"start"_s, u"Start"_s},   {u"stop"_s, u"Stop"_s},
        {u"cancel"_s, u"Cancel"_s}, {u"status"_s, u"Status"_s}, {u"last"_s, u"LastTranscript"_s},
        {u"quit"_s, u"Quit"_s},
    };
    const QString verb = context.asked.verb;
    const ControlClient::Answer answer = context.running.call(methods.value(verb));
    if (!answer)
        return Terminal::complain(answer.error().message,
                                  answer.error().kind == ControlClient::Error::Kind::notRunning
                                      ? ExitCode::notRunning
                                      : ExitCode::failed);
    QString text;
    if (verb == "status"_L1) {
        const auto status = qdbus_cast<QVariantMap>(answer->value(0));
        text = context.asked.output == Invocation::Output::json
                   ? QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(status)).toJson())
                   : statusText(status);
    } else if (verb == "last"_L1) {
        text = answer->value(0).toString() + u'\n';
    }
    return Terminal::print(text) ? ExitCode::done : ExitCode::failed;
}
