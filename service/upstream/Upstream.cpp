#include "service/upstream/Upstream.h"

#include "service/text/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace {

constexpr size_t maximumKey = 4096; // bytes

/// An IPv6 address stands in brackets; the port is empty when there is none.
std::pair<std::string_view, std::string_view> hostAndPort(std::string_view text)
{
    const size_t end = text.starts_with('[') ? text.find(']') + 1 : std::min(text.find(':'), text.size());
    return {text.substr(0, end), text.substr(end)};
}

bool isPort(std::string_view text)
{
    int port = 0;
    return text.empty() || (text.starts_with(':') && text.size() <= 6 &&
                            std::from_chars(text.data() + 1, text.data() + text.size(), port).ptr ==
                                text.data() + text.size() &&
                            port > 0 && port < 65536);
}

} // namespace

// The address itself, not a name that begins like one ("127.example.com").
bool Upstream::isThisMachine(std::string_view place)
{
    const std::string_view host = hostAndPort(place).first;
    return host == "localhost" || host == "[::1]" ||
           (host.starts_with("127.") && host.find_first_not_of("0123456789.") == std::string_view::npos);
}

bool Upstream::isHostAndPort(std::string_view place)
{
    const auto [host, port] = hostAndPort(place);
    return !host.empty() && isPort(port) && place.size() < 300 &&
           place.find_first_of("/?#@\\ ") == std::string_view::npos;
}

std::expected<Upstream, std::string> Upstream::at(std::string_view address)
{
    const auto complaint =
        std::unexpected("--upstream needs an address such as https://speech.example.com/v1");
    const bool isPlain = address.starts_with("http://");
    if ((!isPlain && !address.starts_with("https://")) || address.size() > 2000 ||
        !std::ranges::all_of(address, [](char c) { return c > ' ' && c < 0x7f; }) ||
        address.find_first_of("?#@\\") != std::string_view::npos)
        return complaint;
    const size_t host = isPlain ? 7 : 8;
    const size_t path = std::min(address.find('/', host), address.size());
    const auto [name, port] = hostAndPort(address.substr(host, path - host));
    if (name.empty() || !isPort(port))
        return complaint;
    if (isPlain && !isThisMachine(name))
        return std::unexpected("--upstream needs https for another machine");
    Upstream upstream{std::string(address.substr(0, path)), std::string(address.substr(path))};
    while (upstream.path.ends_with('/'))
        upstream.path.pop_back();
    return upstream;
}

std::string Upstream::keyIn(const std::filesystem::path &file)
{
    std::string key;
    if (file.empty()) {
        const char *variable = std::getenv("SAYVANE_UPSTREAM_KEY");
        key = variable ? variable : "";
    } else {
        std::ifstream stream(file);
        key.resize(maximumKey + 1);
        stream.read(key.data(), static_cast<std::streamsize>(key.size()));
        key.resize(static_cast<size_t>(stream.gcount()));
        if (key.empty())
            throw std::runtime_error("cannot read a key from " + file.string());
    }
    key = Utf8::trimmed(key);
    const bool isPrintable = std::ranges::all_of(key, [](char c) { return c > ' ' && c < 0x7f; });
    if (!isPrintable || key.size() > maximumKey || (key.empty() && !file.empty()))
        throw std::runtime_error("the key of the upstream server is not one line of printable characters");
    return key;
}
