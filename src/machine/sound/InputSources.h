#pragma once

#include <QByteArray>

#include <cstdint>
#include <map>

/// The sound sources of an audio server, and which of them a dictation listens to.
///
/// A monitor is a source that repeats what a sink plays; it is no microphone.
class InputSources final
{
public:
    void insert(uint32_t index, const QByteArray &name, bool isMonitor);
    void remove(uint32_t index) { m_sources.erase(index); }
    void setDefault(const QByteArray &name) { m_default = name; }
    void clear();

    /// Whether any source is a real input.
    bool hasInput() const;

    bool isMonitor(uint32_t index) const;

    /// The source to ask the server for: empty for its default, which is the rule. Only when the
    /// default is a monitor, or there is none, is it the name of the first real input instead.
    QByteArray choice() const;

private:
    struct Source
    {
        QByteArray name;
        bool isMonitor = false;
    };

    std::map<uint32_t, Source> m_sources; // by the server's index: the oldest first
    QByteArray m_default;
};
