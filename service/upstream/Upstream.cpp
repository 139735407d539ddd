#include "service/upstream/Upstream.h"

#include "service/text/Utf8.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace {

constexpr size_t maximumKey = 4096; // bytes

bool isThisMachine(const std::string &host)
{
    return host == "localhost" || host == "[::1]" || host.starts_with("127.");
}

} // namespace

std::expected<Upstream, std::string> Upstream::at(std::string_view address)
{
    static const std::regex form(R"((https?)://(\[[0-9a-fA-F:]+\]|[A-Za-z0-9.-]+)(:[0-9]{1,5})?(/[!-~]*)?)");
    std::cmatch parts;
    if (address.size() > 2000 ||
        !std::regex_match(address.data(), address.data() + address.size(), parts, form) ||
        address.find_first_of("?#@") != std::string_view::npos)
        return std::unexpected("--upstream needs an address such as https://speech.example.com/v1");
    if (parts[1] == "http" && !isThisMachine(parts[2]))
        return std::unexpected("--upstream needs https for another machine");
    Upstream upstream{parts[1].str() + "://" + parts[2].str() + parts[3].str(), parts[4].str()};
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
