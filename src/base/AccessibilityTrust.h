#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// One of the things that a dictation needs of the machine, and how it stands.
struct Checkup
{
    QString subject; ///< such as "paste"
    QString means;   ///< what is used for it; empty where there is nothing
    bool works = false;
    QString advice; ///< where it does not work: what to do, in a sentence

    static Checkup of(const QString &subject, const QString &means, bool works, const QString &advice)
    {
        return {subject, means, works, works ? QString() : advice};
    }
};

/// Whether this session lets the program watch keys, and type.
class AccessibilityTrust
{
public:
    virtual ~AccessibilityTrust() = default;

    /// Whether keys can be watched.
    virtual bool isTrusted() const = 0;

    /// Whether keys can be typed into other programs; most sessions give both or neither.
    virtual bool canType() const { return isTrusted(); }

    /// As `isTrusted`; where it is missing and the system has a way to ask the user, it is asked.
    virtual bool isTrustedPrompting() = 0;

    /// Asks the user again, whatever was answered before; false where the system has no such question.
    virtual bool askAgain() { return false; }

    /// By what this session takes keys, types, shares the clipboard and shows the overlay: "shortcut",
    /// "paste", "clipboard" and "overlay", and whether it could.
    virtual QList<Checkup> checkups() const { return {}; }

    /// Takes back whatever was changed in the desktop's settings for the program, which does not run, and
    /// what the user has allowed; tells what that was, a line for each.
    virtual QStringList takeBack() { return {}; }
};
