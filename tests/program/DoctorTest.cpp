#include "program/Doctor.h"

#include "program/FlowFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

/// What the doctor finds when one thing is wrong: that one, and what to do about it.
class DoctorTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneThingIsWrong()
    {
        using Fault = void (*)(FlowFixture &);
        struct
        {
            const char *told;
            Fault fault;
            int status;
        } const rows[] = {
            {"", [](FlowFixture &) {}, 200},
            {"shortcut: Grant it.", [](FlowFixture &m) { m.machine.trust.trusted = false; }, 200},
            {"shortcut: Another program already has Fn + Space. Choose another shortcut under Settings, or free it there.",
             [](FlowFixture &m) { m.machine.keyTaps.allowsInstall = false; }, 200},
            {"microphone: Connect a microphone, or choose one in the desktop's sound settings.",
             [](FlowFixture &m) { m.machine.microphone.hasDevice = false; }, 200},
            {"keyring: The keyring is locked.",
             [](FlowFixture &m) {
                 m.host();
                 m.machine.secrets.findStatus = SecretStatus::interactionNotAllowed;
             },
             200},
            {"tray: No panel.", [](FlowFixture &m) { m.machine.trust.trusted = true; }, 200},
            {"service: Signed out. Sign in again in Settings.", [](FlowFixture &) {}, 401},
        };
        for (const auto &row : rows) {
            FlowFixture m;
            row.fault(m);
            Host &host = m.host();
            const bool hasTray = !QByteArray(row.told).startsWith("tray");
            const auto examined = Doctor::examine({.platform = m.machine.platform,
                                                   .flow = host.flow(),
                                                   .prefs = host.prefs(),
                                                   .transcriber = host.transcriber(),
                                                   .tray = Checkup::of(u"tray"_s, u"panel"_s, hasTray, u"No panel."_s)},
                                                  {});
            while (m.machine.http.waiting() > 0)
                m.machine.http.answer(row.status, "{}");
            QVERIFY(examined.isReady());
            QStringList subjects;
            QStringList told;
            for (const Checkup &each : QCoro::waitFor(examined)) {
                subjects.append(each.subject);
                if (!each.works)
                    told.append(each.subject + u": "_s + each.advice);
            }
            QCOMPARE(subjects.join(u' '), u"shortcut microphone keyring tray service"_s);
            QCOMPARE(told.join(u'\n'), QString::fromUtf8(row.told));
        }
    }
};

QTEST_GUILESS_MAIN(DoctorTest)
#include "DoctorTest.moc"
