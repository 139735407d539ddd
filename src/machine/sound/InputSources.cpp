#include "machine/sound/InputSources.h"

#include <algorithm>

void InputSources::insert(uint32_t index, const QByteArray &name, bool isMonitor)
{
    m_sources.insert_or_assign(index, Source{name, isMonitor});
}

void InputSources::clear()
{
    m_sources.clear();
    m_default.clear();
}

bool InputSources::hasInput() const
{
    return std::ranges::any_of(m_sources, [](const auto &entry) { return !entry.second.isMonitor; });
}

bool InputSources::isMonitor(uint32_t index) const
{
    const auto found = m_sources.find(index);
    return found != m_sources.end() && found->second.isMonitor;
}

QByteArray InputSources::choice() const
{
    const auto isDefault = [this](const auto &entry) { return entry.second.name == m_default; };
    const auto isReal = [](const auto &entry) { return !entry.second.isMonitor; };
    const auto byDefault = std::ranges::find_if(m_sources, isDefault);
    // A default that is not listed yet has just been plugged in: the server knows better.
    if (byDefault == m_sources.end() ? !m_default.isEmpty() : isReal(*byDefault))
        return {};
    const auto real = std::ranges::find_if(m_sources, isReal);
    return real == m_sources.end() ? QByteArray() : real->second.name;
}
