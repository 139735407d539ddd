#pragma once

#include <QList>

#include <functional>
#include <memory>

/// Is called on the main thread when something changes; nobody's any more once it is given up.
using Listener = std::shared_ptr<const std::function<void()>>;

/// Those who listen, for as long as they keep their listeners.
class Listeners
{
public:
    void add(const Listener &listener) { m_listeners.append(listener); }

    void tell()
    {
        m_listeners.removeIf([](const auto &listener) { return listener.expired(); });
        // One of them may add another, or end one.
        const auto listeners = m_listeners;
        for (const auto &each : listeners) {
            if (const Listener listener = each.lock())
                (*listener)();
        }
    }

private:
    QList<std::weak_ptr<const std::function<void()>>> m_listeners;
};
