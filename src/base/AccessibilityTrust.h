#pragma once

/// Whether this session lets the program watch keys and send them.
class AccessibilityTrust
{
public:
    virtual ~AccessibilityTrust() = default;

    virtual bool isTrusted() const = 0;

    /// As `isTrusted`; where it is missing and the system has a way to ask the user, it is asked.
    virtual bool isTrustedPrompting() = 0;
};
