#pragma once

#include "base/Microphone.h"

class PulseConnection;

/// The microphone of the audio server: its default source, or, when that is a monitor of what the
/// speakers play, the first real one.
class PulseMicrophone final : public Microphone
{
public:
    explicit PulseMicrophone(PulseConnection &connection) : m_connection(connection) {}

    void findInputDevice(std::function<void(bool)> answer) override;

    /// `denied` when a server runs but turned us away. No server at all is a matter of
    /// `findInputDevice`: there is nobody who could object.
    Authorization authorization() const override;

    /// An audio server has nothing to ask the user: this knocks once more.
    void requestAccess() override;

    std::expected<std::unique_ptr<Recording>, QString> open(const QString &path,
                                                            const PcmFormat &format) override;

private:
    PulseConnection &m_connection;
};
