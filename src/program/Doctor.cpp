#include "program/Doctor.h"

#include "base/Completion.h"
#include "base/Microphone.h"
#include "base/Platform.h"
#include "base/SecretStore.h"
#include "cloud/speech/Transcriber.h"
#include "dictation/FlowController.h"
#include "preferences/Prefs.h"

#include <QUrl>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

Checkup shortcut(Checkup offered, const Doctor::Needs &needs)
{
    const QString keys = needs.prefs.hotkeySpec().displayString();
    if (offered.works && !needs.flow.hotkeyActive()) {
        offered.works = false;
        const QString holder = needs.platform.keyTaps.holder();
        offered.advice = u"%1 already has %2. Choose another shortcut under Settings, or free it there."_s.arg(
            holder.isEmpty() ? u"Another program"_s : holder, keys);
    }
    if (!offered.means.isEmpty())
        offered.means = u"%1, %2"_s.arg(keys, offered.means);
    return offered;
}

QCoro::Task<Checkup> microphone(Microphone &microphone)
{
    const auto found = std::make_shared<Completion<bool>>();
    microphone.findInputDevice([found](bool isThere) { found->complete(isThere); });
    const Completion<bool>::Awaiter answer{found.get()};
    const bool isThere = co_await answer;
    if (microphone.authorization() == Microphone::Authorization::denied)
        co_return Checkup::of(u"microphone"_s, {}, false, u"Allow it under Settings, Permissions."_s);
    co_return Checkup::of(u"microphone"_s, isThere ? u"the sound server's default source"_s : QString(),
                          isThere, u"Connect a microphone, or choose one in the desktop's sound settings."_s);
}

QCoro::Task<Checkup> keyring(SecretStore &secrets, std::stop_token stop)
{
    const auto found = co_await secrets.find(u"com.sayvane.app"_s, u"doctor"_s, SecretStore::Asking::silently,
                                             std::move(stop));
    const bool works = found.status == SecretStatus::success || found.status == SecretStatus::itemNotFound;
    const QString why = secrets.message(found.status).value_or(u"It does not answer."_s);
    co_return Checkup::of(u"keyring"_s, u"Secret Service"_s, works, why);
}

QCoro::Task<Checkup> service(Doctor::Needs needs, std::stop_token stop)
{
    const Provider provider = needs.prefs.provider();
    const QString means =
        provider == Provider::sayvane ? needs.prefs.accountBaseURL() : Providers::displayName(provider);
    const Transcriber::Models models = co_await needs.transcriber.listModels(provider, std::move(stop));
    co_return Checkup::of(u"service"_s, means, models.has_value(),
                          models ? QString() : models.error().description);
}

} // namespace

QCoro::Task<QList<Checkup>> Doctor::examine(Needs needs, std::stop_token stop)
{
    QList<Checkup> all = needs.platform.trust.checkups();
    for (Checkup &each : all) {
        if (each.subject == "shortcut"_L1)
            each = shortcut(each, needs);
    }
    // Nobody of them waits for another.
    const QCoro::Task<Checkup> heard = microphone(needs.platform.microphone);
    const QCoro::Task<Checkup> kept = keyring(needs.platform.secrets, stop);
    const QCoro::Task<Checkup> answered = service(needs, stop);
    all.append(co_await heard);
    all.append(co_await kept);
    all.append(needs.tray);
    all.append(co_await answered);
    co_return all;
}
