#include "desktop/program/Desk.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString speech = u"/usr/share/pocketsphinx/test/data/librivox/"_s;

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

Desk::Desk() : m_logPath(QDir::homePath() + u"/sayvane.log"_s)
{
}

Desk::~Desk()
{
    stopSayvane();
    for (const auto &process : m_open) {
        process->terminate();
        if (!process->waitForFinished(3000))
            process->kill();
        process->waitForFinished(3000);
    }
}

bool Desk::eventually(const std::function<bool()> &condition, int milliseconds)
{
    return QTest::qWaitFor(condition, milliseconds);
}

bool Desk::startSayvane(const QStringList &arguments, const QByteArray &ready)
{
    m_read = 0;
    m_sayvane = std::make_unique<QProcess>();
    m_sayvane->setProcessChannelMode(QProcess::MergedChannels);
    m_sayvane->setStandardOutputFile(m_logPath);
    m_sayvane->start(QStringLiteral(RUN_PROFILE), QStringList{QStringLiteral(PREFIX)} + arguments);
    return logsNext(ready);
}

void Desk::stopSayvane()
{
    if (!m_sayvane)
        return;
    m_sayvane->terminate();
    if (!m_sayvane->waitForFinished(10000))
        m_sayvane->kill();
    m_sayvane->waitForFinished(3000);
    m_sayvane.reset();
}

QByteArray Desk::log() const
{
    return contents(m_logPath);
}

bool Desk::logsNext(const QByteArray &line)
{
    const auto isThere = [&] {
        const qsizetype found = log().indexOf(line, m_read);
        if (found >= 0)
            m_read = found + line.size();
        return found >= 0;
    };
    const bool appeared = eventually(isThere, 60000);
    if (!appeared)
        qWarning().noquote() << "The program did not say" << line << "but:\n" << log();
    return appeared;
}

QString Desk::profileFolder() const
{
    return QDir::homePath() + u"/.local/share/sayvane-run"_s;
}

QJsonArray Desk::history() const
{
    return QJsonDocument::fromJson(contents(profileFolder() + u"/Sayvane/history.json"_s)).array();
}

QStringList Desk::recordings() const
{
    QStringList found;
    const QDir temporary(qEnvironmentVariable("TMPDIR"));
    for (const QString &folder : temporary.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        found += QDir(temporary.filePath(folder)).entryList({u"sayvane-*.wav"_s});
    return found;
}

QProcess *Desk::open(const QString &program, const QStringList &arguments)
{
    auto process = std::make_unique<QProcess>();
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(program, arguments);
    m_open.push_back(std::move(process));
    return m_open.back().get();
}

QByteArray Desk::run(const QString &program, const QStringList &arguments, const QByteArray &input) const
{
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    return process.waitForFinished(30000) && process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

bool Desk::focusWindow(const QString &title)
{
    QByteArray window;
    const auto isFocused = [&] {
        window = run(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--name"_s, title}).trimmed().split('\n').last();
        if (window.isEmpty())
            return false;
        run(u"xdotool"_s, {u"windowactivate"_s, QString::fromLatin1(window)});
        return run(u"xdotool"_s, {u"getactivewindow"_s}).trimmed() == window;
    };
    return eventually(isFocused, 30000);
}

void Desk::pressShortcut() const
{
    run(u"xdotool"_s, {u"keydown"_s, u"super"_s, u"key"_s, u"space"_s, u"keyup"_s, u"super"_s});
}

void Desk::press(const QString &keys) const
{
    run(u"xdotool"_s, {u"key"_s, keys});
}

void Desk::say(const QString &clip)
{
    const QProcess *player = open(u"paplay"_s, {u"--device=speaker"_s, speech + clip + u".wav"_s});
    eventually([player] { return player->state() == QProcess::NotRunning; }, 30000); // what the test serves goes on
}

void Desk::copy(const QString &type, const QByteArray &data)
{
    // The copying program stays, as the owner of what was copied.
    QProcess *owner = open(u"xclip"_s, {u"-quiet"_s, u"-selection"_s, u"clipboard"_s, u"-t"_s, type});
    owner->write(data);
    owner->closeWriteChannel();
    eventually([&] { return clipboard(type) == data; });
}

QByteArray Desk::clipboard(const QString &type) const
{
    return run(u"xclip"_s, {u"-selection"_s, u"clipboard"_s, u"-t"_s, type, u"-o"_s});
}

bool Desk::dictate(const QString &clip)
{
    pressShortcut();
    if (!logsNext("flow: recording"))
        return false;
    say(clip);
    pressShortcut();
    return logsNext("flow: idle");
}

QString Desk::transcriptOf(const QString &clip)
{
    static const QRegularExpression markers(u"<s>|</s>|\\(.*\\)"_s);
    for (const QString &line : QString::fromUtf8(contents(speech + u"transcription"_s)).split(u'\n')) {
        if (line.contains(clip))
            return QString(line).remove(markers).simplified();
    }
    return {};
}
