#pragma once

#include "platform/Appearance.h"

#include <QList>

/// Those who listen to an Appearance, for as long as they keep their listeners.
class AppearanceListeners
{
public:
    void add(const Appearance::Listener &listener) { m_listeners.append(listener); }

    void tell()
    {
        m_listeners.removeIf([](const auto &listener) { return listener.expired(); });
        // One of them may add another, or end one.
        const auto listeners = m_listeners;
        for (const auto &each : listeners) {
            if (const Appearance::Listener listener = each.lock())
                (*listener)();
        }
    }

private:
    QList<std::weak_ptr<const std::function<void()>>> m_listeners;
};
