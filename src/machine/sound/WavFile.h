#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <expected>

/// A WAV file of 16-bit mono samples that can be read at every moment while it grows.
///
/// The layout is the classic one of 44 bytes (RIFF, a 16-byte "fmt " chunk, "data"), as described in
/// "Multimedia Programming Interface and Data Specifications 1.0". The header is brought up to date
/// after the samples, twice a second: it never promises more than the file holds, and a reader of a
/// file that was cut off misses half a second at most.
class WavFile final
{
public:
    /// Creates a file that only this user can read; one that exists already is an error. Errors here
    /// and below are the system's words for the cause.
    static std::expected<WavFile, QString> create(const QString &path, uint32_t sampleRate);

    WavFile(WavFile &&other) noexcept;
    WavFile &operator=(WavFile &&other) = delete;
    ~WavFile();

    /// Adds 16-bit little-endian samples. After an error the file is closed with all that it could hold.
    std::expected<void, QString> append(QByteArrayView pcm);

    /// Brings the header up to date and closes the file. Safe to call twice.
    void close();

private:
    WavFile(int file, uint32_t sampleRate) : m_file(file), m_sampleRate(sampleRate) {}

    bool writeHeader();

    int m_file;
    uint32_t m_sampleRate;
    uint32_t m_size = 0;     // bytes of samples in the file
    uint32_t m_promised = 0; // and in its header
};
