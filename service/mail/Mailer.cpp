#include "service/mail/Mailer.h"

#include "service/accounts/EmailAddress.h"
#include "service/machine/Log.h"
#include "service/machine/WallClock.h"
#include "service/text/Utf8.h"
#include "service/upstream/Upstream.h"

#include <curl/curl.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr size_t workers = 4;
constexpr size_t longestQueue = 200;
constexpr auto retryPause = 60s;
constexpr auto waitForFirst = 25s; // two attempts, one behind the other; clients wait for 30

/// RFC 5322, in UTC.
std::string date(std::time_t now)
{
    std::tm parts{};
    ::gmtime_r(&now, &parts);
    std::array<char, 64> text{};
    // The names of days and months are English in the C locale, which this program never leaves.
    return {text.data(), std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S +0000", &parts)};
}

std::string messageId(std::string_view sender)
{
    std::array<unsigned char, 16> random{};
    if (RAND_bytes(random.data(), random.size()) != 1)
        throw std::runtime_error("no random numbers");
    std::string id = "<";
    for (const unsigned char byte : random) {
        id += "0123456789abcdef"[byte >> 4];
        id += "0123456789abcdef"[byte & 15];
    }
    return id.append(sender.substr(sender.find('@'))).append(">");
}

std::string message(const SignIns::Code &code, const std::string &sender, const std::string &email,
                    const std::string &device)
{
    return "Date: " + date(std::time(nullptr)) + "\r\nFrom: Sayvane <" + sender + ">\r\nTo: <" + email +
           ">\r\nMessage-ID: " + messageId(sender) + "\r\nSubject: " + code.digits +
           " is your Sayvane code\r\nAuto-Submitted: auto-generated\r\nMIME-Version: 1.0\r\n"
           "Content-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: 8bit\r\n\r\n" +
           code.digits + " is your code to sign in to Sayvane.\r\n\r\nIt was asked for on the device \"" +
           device + "\" and works once, until " + Timestamp::of(code.expires) +
           ".\r\nIf that was not you, ignore this mail: nobody can sign in without the code.\r\n";
}

size_t readText(char *buffer, size_t size, size_t count, void *rest)
{
    auto &text = *static_cast<std::string_view *>(rest);
    const size_t taken = std::min(text.size(), size * count);
    std::copy_n(text.data(), taken, buffer);
    text.remove_prefix(taken);
    return taken;
}

} // namespace

std::expected<Mailer::Settings, std::string> Mailer::at(std::string_view address)
{
    const bool isPlain = address.starts_with("smtp://");
    const std::string_view place = address.substr(std::min(address.size(), size_t{isPlain ? 7u : 8u}));
    if ((!isPlain && !address.starts_with("smtps://")) || !Upstream::isHostAndPort(place))
        return std::unexpected("--mail needs an address such as smtp://mail.example.com:587");
    return Settings{.server = std::string(address), .isLocal = Upstream::isThisMachine(place)};
}

void Mailer::readCredentials(Settings &settings, const std::filesystem::path &file)
{
    std::ifstream stream(file);
    std::getline(stream, settings.name);
    std::getline(stream, settings.password);
    settings.name = Utf8::trimmed(settings.name);
    settings.password = Utf8::trimmed(settings.password);
    if (settings.name.empty() || settings.password.empty())
        throw std::runtime_error("cannot read a name and a password, a line each, from " + file.string());
}

Mailer::Mailer(Settings settings) : m_settings(std::move(settings))
{
    curl_global_init(CURL_GLOBAL_DEFAULT);
    for (size_t i = 0; i < workers; ++i)
        m_threads.emplace_back([this] { work(); });
}

Mailer::~Mailer()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        m_changed.notify_all();
    }
    for (std::thread &thread : m_threads)
        thread.join();
}

Mailer::Outcome Mailer::send(const SignIns::Code &code, const std::string &email, const std::string &device)
{
    Mail mail{.recipient = email,
              .text = message(code, m_settings.sender, email, device),
              .due = Clock::now(),
              .expires = Clock::now() + SignIns::lifetime};
    std::future<Outcome> outcome = mail.first.get_future();
    {
        const std::lock_guard lock(m_mutex);
        if (m_ending || m_queue.size() >= longestQueue)
            return Outcome::failed;
        m_queue.push_back(std::move(mail));
        m_changed.notify_all();
    }
    return outcome.wait_for(waitForFirst) == std::future_status::ready ? outcome.get() : Outcome::sent;
}

void Mailer::work()
{
    std::unique_lock lock(m_mutex);
    while (!m_ending) {
        const auto next = std::ranges::min_element(m_queue, {}, &Mail::due);
        if (next == m_queue.end()) {
            m_changed.wait(lock);
            continue;
        }
        if (next->due > Clock::now()) {
            const Clock::time_point due = next->due; // the mail may be gone by then
            m_changed.wait_until(lock, due);
            continue;
        }
        Mail mail = std::move(*next);
        m_queue.erase(next);
        lock.unlock();
        const Reply reply = attempt(mail);
        if (std::exchange(mail.isFirst, false)) {
            mail.first.set_value(reply == Reply::refused  ? Outcome::refused
                                 : reply == Reply::failed ? Outcome::failed
                                                          : Outcome::sent);
        }
        lock.lock();
        mail.due = Clock::now() + retryPause;
        if (reply == Reply::later && mail.due < mail.expires && m_queue.size() < longestQueue)
            m_queue.push_back(std::move(mail));
    }
    for (Mail &mail : m_queue) {
        if (std::exchange(mail.isFirst, false))
            mail.first.set_value(Outcome::failed);
    }
}

Mailer::Reply Mailer::attempt(const Mail &mail) const
{
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> transfer(curl_easy_init(), &curl_easy_cleanup);
    const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> recipients(
        curl_slist_append(nullptr, ('<' + mail.recipient + '>').c_str()), &curl_slist_free_all);
    std::string_view rest = mail.text;
    const auto set = [&transfer](CURLoption option, auto value) {
        curl_easy_setopt(transfer.get(), option, value);
    };
    set(CURLOPT_URL, m_settings.server.c_str());
    set(CURLOPT_USE_SSL, static_cast<long>(m_settings.isLocal ? CURLUSESSL_TRY : CURLUSESSL_ALL));
    if (const char *authorities = std::getenv("SSL_CERT_FILE"))
        set(CURLOPT_CAINFO, authorities);
    if (!m_settings.name.empty()) {
        set(CURLOPT_USERNAME, m_settings.name.c_str());
        set(CURLOPT_PASSWORD, m_settings.password.c_str());
    }
    const std::string sender = '<' + m_settings.sender + '>';
    set(CURLOPT_MAIL_FROM, sender.c_str());
    set(CURLOPT_MAIL_RCPT, recipients.get());
    set(CURLOPT_UPLOAD, 1L);
    set(CURLOPT_READFUNCTION, readText);
    set(CURLOPT_READDATA, &rest);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_PROXY, "");
    set(CURLOPT_TIMEOUT, static_cast<long>(m_settings.patience.count()));
    const CURLcode code = curl_easy_perform(transfer.get());
    if (code == CURLE_OK)
        return Reply::taken;
    long answer = 0;
    curl_easy_getinfo(transfer.get(), CURLINFO_RESPONSE_CODE, &answer);
    Log::failure(std::string("a sign-in code could not be mailed: ") + curl_easy_strerror(code) +
                 (answer > 0 ? ", the mail server answered " + std::to_string(answer) : std::string()));
    if (code == CURLE_LOGIN_DENIED)
        return Reply::failed;
    // 550 and its kin are about the mailbox; other refusals are about us.
    if (answer == 550 || answer == 551 || answer == 553 || answer == 501)
        return Reply::refused;
    return answer >= 400 && answer < 500 ? Reply::later : Reply::failed;
}
