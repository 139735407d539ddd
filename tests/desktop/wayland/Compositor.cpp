#include "desktop/wayland/Compositor.h"

#include <QFile>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr uint nobody = 65534;

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// Its folder stands outside the session's own, which the other user may not enter.
Compositor::Compositor(bool hasX11) : m_folder(u"/tmp/sayvane-sway.XXXXXX"_s)
{
    QFile configuration(m_folder.filePath(u"config"_s));
    if (configuration.open(QIODevice::WriteOnly))
        configuration.write("xwayland " + QByteArray(hasX11 ? "enable" : "disable") +
                            "\noutput * bg #404040 solid_color\n"
                            "exec echo \"$WAYLAND_DISPLAY $DISPLAY\" >" +
                            m_folder.path().toUtf8() + "/ready\n");
    configuration.close();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"DISPLAY"_s);
    environment.insert(u"XDG_RUNTIME_DIR"_s, m_folder.path());
    environment.insert(u"HOME"_s, m_folder.path());
    environment.insert(u"TMPDIR"_s, m_folder.path());
    environment.insert(u"WLR_BACKENDS"_s, u"headless"_s);
    environment.insert(u"WLR_RENDERER"_s, u"pixman"_s);
    environment.insert(u"WLR_LIBINPUT_NO_DEVICES"_s, u"1"_s);
    m_sway.setProcessEnvironment(environment);
    m_sway.setProcessChannelMode(QProcess::MergedChannels);
    QStringList command{u"sway"_s, u"-c"_s, configuration.fileName()};
    if (::getuid() == 0) {
        for (const QString &path : {m_folder.path(), configuration.fileName()})
            if (::chown(path.toUtf8().constData(), nobody, nobody) != 0)
                m_objection = "The folder could not be given away.";
        command =
            QStringList{u"setpriv"_s, u"--reuid=%1"_s.arg(nobody), u"--regid=%1"_s.arg(nobody), u"--clear-groups"_s} +
            command;
    }
    m_sway.start(command.takeFirst(), command);
    QByteArray ready;
    const auto isReady = [&] {
        ready = contents(m_folder.filePath(u"ready"_s));
        return ready.endsWith('\n') || m_sway.state() == QProcess::NotRunning;
    };
    if (!QTest::qWaitFor(isReady, 20000) || !ready.endsWith('\n'))
        m_objection = "sway does not start: " + m_sway.errorString().toUtf8() + '\n' + m_sway.readAll();
    const QByteArrayList names = ready.trimmed().split(' ');
    m_display = m_folder.path().toUtf8() + '/' + names.value(0);
    m_x11Display = names.value(1);
}

Compositor::~Compositor()
{
    m_sway.terminate();
    if (!m_sway.waitForFinished(5000))
        m_sway.kill();
    m_sway.waitForFinished(5000);
}
