#include "cloud/labs/LabsAnswer.h"

#include "base/Json.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

std::expected<LabsAnswer, AccountError> LabsAnswer::decode(const QByteArray &json, LabsProvider asked)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    JsonMembers reply(document.object());
    const LabsAnswer answer{.text = reply.text("text"_L1).value_or(QString()).trimmed(),
                            .provider =
                                reply.text("provider"_L1).value_or(LabsProviderNames::rawValue(asked)),
                            .model = reply.text("model"_L1).value_or(QString()),
                            .inputTokens = reply.wholeNumber("inputTokens"_L1),
                            .outputTokens = reply.wholeNumber("outputTokens"_L1)};
    if (!document.isObject() || !reply.isSound())
        return std::unexpected(AccountError::unreadable());
    if (answer.text.isEmpty())
        return std::unexpected(
            AccountError::badResponse(AccountError::tr("Sayvane sent an empty answer back.")));
    return answer;
}
