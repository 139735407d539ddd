#pragma once

#include "service/accounts/SignIns.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <expected>
#include <filesystem>
#include <future>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// Sends sign-in codes by a mail server (SMTP, RFC 5321), always encrypted unless the server is on this
/// machine. May be used from several threads.
///
/// A mail that the server asks to come again with (a reply of 4xx) is tried again for as long as its code
/// lives.
class Mailer
{
public:
    struct Settings
    {
        std::string server;   ///< "smtp://host:port", with STARTTLS, or "smtps://host:port"; empty: none
        bool isLocal = false; ///< on this machine, where STARTTLS may be missing
        std::string sender;   ///< the address that the mails come from
        std::string name;     ///< to log in with; empty: nobody logs in
        std::string password;
        std::chrono::seconds patience{12}; ///< for one attempt
    };
    enum class Outcome {
        sent,    ///< the mail server has it, or will be asked again
        refused, ///< the mail server does not take the address
        failed,  ///< nothing was sent
    };

    /// Reads an address such as "smtp://mail.example.com:587". The error is a sentence.
    static std::expected<Settings, std::string> at(std::string_view address);
    /// The name and the password in a file of two lines. Throws std::runtime_error.
    static void readCredentials(Settings &settings, const std::filesystem::path &file);

    explicit Mailer(Settings settings);
    ~Mailer();
    Mailer(const Mailer &) = delete;
    Mailer &operator=(const Mailer &) = delete;

    /// Waits for the first attempt, though not for long: one that takes longer counts as sent.
    Outcome send(const SignIns::Code &code, const std::string &email, const std::string &device);

private:
    using Clock = std::chrono::steady_clock;

    struct Mail
    {
        std::string recipient;
        std::string text;
        Clock::time_point due;
        Clock::time_point expires;
        std::promise<Outcome> first; // of the first attempt
        bool isFirst = true;
    };
    enum class Reply { taken, later, refused, failed };

    void work();
    Reply attempt(const Mail &mail) const;

    Settings m_settings;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Mail> m_queue;
    bool m_ending = false;
    std::vector<std::thread> m_threads;
};
