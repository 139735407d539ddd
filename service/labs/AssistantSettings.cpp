#include "service/labs/AssistantSettings.h"

#include "service/protocol/BoundedJson.h"
#include "service/text/Utf8.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string contentOf(const std::filesystem::path &path)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        throw std::runtime_error("cannot read " + path.string() + ": " + std::strerror(errno));
    struct stat state
    {
    };
    const bool isPrivate = ::fstat(file, &state) == 0 && S_ISREG(state.st_mode) && (state.st_mode & 077) == 0;
    std::string content(65536, '\0');
    const ssize_t size = isPrivate ? ::read(file, content.data(), content.size()) : 0;
    ::close(file);
    if (!isPrivate)
        throw std::runtime_error(path.string() + " may hold keys, so it must be readable by its owner alone");
    content.resize(size > 0 ? static_cast<size_t>(size) : 0);
    return content;
}

bool isPrintable(const std::string &text)
{
    return text.size() <= 4096 && std::ranges::all_of(text, [](char c) { return c > ' ' && c < 0x7f; });
}

} // namespace

Upstream AssistantSettings::upstream(const std::string &assistant) const
{
    constexpr std::string_view ending = "/chat/completions";
    const auto base = std::string_view(address).substr(
        0, address.ends_with(ending) ? address.size() - ending.size() : address.size());
    auto upstream = Upstream::at(base);
    if (!upstream) {
        throw std::runtime_error("the assistant " + assistant + " needs an address such as" +
                                 " https://chat.example.com/v1/chat/completions;" +
                                 " only this machine may be reached by plain http");
    }
    upstream->chatModel = model;
    upstream->key = Utf8::trimmed(key);
    if (model.empty() || !isPrintable(model))
        throw std::runtime_error("the assistant " + assistant + " needs the name of a model");
    if (!isPrintable(upstream->key))
        throw std::runtime_error("the key of the assistant " + assistant +
                                 " is not one line of printable characters");
    return *upstream;
}

std::map<std::string, AssistantSettings> AssistantSettings::in(const std::filesystem::path &file)
{
    const nlohmann::json document = BoundedJson::parsed(contentOf(file));
    if (!document.is_object())
        throw std::runtime_error(file.string() + " is not a JSON object");
    std::map<std::string, AssistantSettings> all;
    for (const auto &[assistant, members] : document.items()) {
        AssistantSettings &settings = all[assistant];
        bool understood = members.is_object();
        for (const auto &[name, value] : members.items()) {
            std::string *member = settings.named(name);
            understood = understood && member && value.is_string();
            if (understood)
                *member = value.get<std::string>();
        }
        if (!understood) {
            throw std::runtime_error(file.string() + ": " + assistant +
                                     " is not an object of the texts address, model and key");
        }
    }
    return all;
}

std::string *AssistantSettings::named(std::string_view name)
{
    return name == "address" ? &address : name == "model" ? &model : name == "key" ? &key : nullptr;
}
