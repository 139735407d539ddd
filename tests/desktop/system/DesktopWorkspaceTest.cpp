#include "machine/desktop/DesktopWorkspace.h"
#include "machine/desktop/HostName.h"

#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::StringLiterals;

class DesktopWorkspaceTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_programs;
    QString m_calls;

    /// A program that writes down how it was called.
    void install(const QString &name)
    {
        QFile file(m_programs->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\nprintf '%s' \"" + name.toUtf8() +
                   "\" >>\"$CALLS\"\nfor a; do printf ' [%s]' \"$a\" >>\"$CALLS\"; done\n"
                   "printf '\\n' >>\"$CALLS\"\n");
        file.setPermissions(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser);
    }

    DesktopWorkspace workspace(const QString &desktop = {}) const
    {
        QProcessEnvironment environment;
        environment.insert(u"PATH"_s, m_programs->path());
        environment.insert(u"CALLS"_s, m_calls);
        environment.insert(u"XDG_CURRENT_DESKTOP"_s, desktop);
        return DesktopWorkspace(environment);
    }

    QString calls() const
    {
        QFile file(m_calls);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

private Q_SLOTS:
    void init()
    {
        m_programs = std::make_unique<QTemporaryDir>();
        m_calls = m_programs->filePath(u"calls.txt"_s);
    }

    void webAddressesAndFilesAreOpened_data()
    {
        QTest::addColumn<QUrl>("address");
        QTest::addColumn<QString>("argument");
        QTest::newRow("page") << QUrl(u"https://example.org/a b?x=1&y='$(id)'#z"_s)
                              << u"https://example.org/a%20b?x=1&y='$(id)'#z"_s;
        QTest::newRow("file") << QUrl::fromLocalFile(u"/home/a/f \u00fc.json"_s) << u"file:///home/a/f%20%C3%BC.json"_s;
        QTest::newRow("script") << QUrl(u"javascript:alert(1)"_s) << QString();
        QTest::newRow("remote file") << QUrl(u"file://elsewhere/share"_s) << QString();
    }

    void webAddressesAndFilesAreOpened()
    {
        QFETCH(QUrl, address);
        QFETCH(QString, argument);
        install(u"xdg-open"_s);
        QCOMPARE(workspace().open(address), !argument.isEmpty());
        if (!argument.isEmpty())
            QTRY_COMPARE(calls(), u"xdg-open [%1]\n"_s.arg(argument));
        QVERIFY(argument.isEmpty() == calls().isEmpty());
    }

    void aDesktopWithoutTheUsualOpenerHasAnother()
    {
        QVERIFY(!workspace().open(QUrl(u"https://example.org"_s)));
        install(u"gio"_s);
        QVERIFY(workspace().open(QUrl(u"https://example.org"_s)));
        QTRY_COMPARE(calls(), u"gio [open] [https://example.org]\n"_s);
    }

    void panesAreThoseOfTheRunningDesktop_data()
    {
        QTest::addColumn<QString>("desktop");
        QTest::addColumn<SettingsPane>("pane");
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QString>("call");
        const QStringList gnome{u"gnome-control-center"_s};
        QTest::newRow("KDE") << u"KDE"_s << SettingsPane::microphone << QStringList{u"systemsettings"_s}
                             << u"systemsettings [kcm_pulseaudio]"_s;
        QTest::newRow("MATE without its mixer")
            << u"MATE"_s << SettingsPane::microphone << QStringList{u"pavucontrol"_s} << u"pavucontrol [--tab=4]"_s;
        QTest::newRow("unknown access") << u"sway"_s << SettingsPane::accessibility << gnome << QString();
    }

    void panesAreThoseOfTheRunningDesktop()
    {
        QFETCH(QString, desktop);
        QFETCH(SettingsPane, pane);
        QFETCH(QStringList, installed);
        QFETCH(QString, call);
        for (const QString &program : std::as_const(installed))
            install(program);
        QCOMPARE(workspace(desktop).open(pane), !call.isEmpty());
        if (!call.isEmpty())
            QTRY_COMPARE(calls(), call + u'\n');
    }

    void thePrettyNameOfTheComputerIsPreferred()
    {
        const QString path = m_programs->filePath(u"machine-info"_s);
        QCOMPARE(HostName(path).localizedName(), QSysInfo::machineHostName().section(u'.', 0, 0));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("CHASSIS=laptop\nPRETTY_HOSTNAME=\"The \\\"big\\\" \\$1\"\n");
        file.close();
        QCOMPARE(HostName(path).localizedName(), u"The \"big\" $1"_s);
    }
};

QTEST_GUILESS_MAIN(DesktopWorkspaceTest)
#include "DesktopWorkspaceTest.moc"
