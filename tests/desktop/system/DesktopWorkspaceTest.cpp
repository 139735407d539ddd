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

    void webAddressesAndFilesAreOpened()
    {
        install(u"xdg-open"_s);
        QString called;
        for (const auto &[address, argument] :
             {std::pair(QUrl(u"https://example.org/a b?x=1&y='$(id)'#z"_s),
                        u"https://example.org/a%20b?x=1&y='$(id)'#z"_s),
              {QUrl::fromLocalFile(u"/home/a/f \u00fc.json"_s), u"file:///home/a/f%20%C3%BC.json"_s},
              {QUrl(u"javascript:alert(1)"_s), QString()},
              {QUrl(u"file://elsewhere/share"_s), QString()}}) {
            QCOMPARE(workspace().open(address), !argument.isEmpty());
            if (!argument.isEmpty())
                called += u"xdg-open [%1]\n"_s.arg(argument);
            QTRY_COMPARE(calls(), called);
        }
    }

    void aDesktopWithoutTheUsualOpenerHasAnother()
    {
        QVERIFY(!workspace().open(QUrl(u"https://example.org"_s)));
        install(u"gio"_s);
        QVERIFY(workspace().open(QUrl(u"https://example.org"_s)));
        QTRY_COMPARE(calls(), u"gio [open] [https://example.org]\n"_s);
    }

    void panesAreThoseOfTheRunningDesktop()
    {
        QVERIFY(!workspace(u"sway"_s).open(SettingsPane::accessibility));
        install(u"pavucontrol"_s);
        QVERIFY(workspace(u"KDE"_s).open(SettingsPane::microphone)); // without its own
        QTRY_COMPARE(calls(), u"pavucontrol [--tab=4]\n"_s);
        install(u"systemsettings"_s);
        QVERIFY(workspace(u"KDE"_s).open(SettingsPane::microphone));
        QTRY_COMPARE(calls(), u"pavucontrol [--tab=4]\nsystemsettings [kcm_pulseaudio]\n"_s);
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
