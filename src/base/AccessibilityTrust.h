#pragma once

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
};
