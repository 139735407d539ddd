#include "dictation/FlowLog.h"

#include "dictation/FlowController.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.flow", QtInfoMsg)

const char *name(FlowState state)
{
    switch (state) {
    case FlowState::idle:
        return "idle";
    case FlowState::recording:
        return "recording";
    case FlowState::processing:
        return "processing";
    }
    Q_UNREACHABLE();
}

} // namespace

void FlowLog::follow(FlowController &flow)
{
    QObject::connect(&flow, &FlowController::stateChanged, &flow,
                     [&flow] { qCInfo(log, "%s", name(flow.state())); });
    QObject::connect(&flow, &FlowController::lastErrorChanged, &flow, [&flow] {
        if (const auto &error = flow.lastError())
            qCWarning(log).noquote() << *error;
    });
    QObject::connect(&flow, &FlowController::hotkeyActiveChanged, &flow,
                     [&flow] { qCInfo(log, "shortcut %s", flow.hotkeyActive() ? "active" : "inactive"); });
}
