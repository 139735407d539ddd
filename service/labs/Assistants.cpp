#include "service/labs/Assistants.h"

#include "service/labs/AssistantSettings.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace {

struct Known
{
    std::string_view name;
    std::string_view variables; // how the names of its environment variables begin
    std::string_view title;
};
constexpr std::array known{Known{"claude", "SAYVANE_LABS_CLAUDE_", "Claude"},
                           Known{"chatgpt", "SAYVANE_LABS_CHATGPT_", "ChatGPT"}};

} // namespace

Assistants::Assistants(const std::filesystem::path &file, const Environment &environment)
{
    auto settings = file.empty() ? std::map<std::string, AssistantSettings>() : AssistantSettings::in(file);
    for (const auto &[name, ending] :
         {std::pair("address", "ADDRESS"), std::pair("model", "MODEL"), std::pair("key", "KEY")}) {
        for (const Known &assistant : known) {
            const char *value = environment((std::string(assistant.variables) + ending).c_str());
            if (value && *value)
                *settings[std::string(assistant.name)].named(name) = value;
        }
    }
    for (const auto &[name, assistant] : settings) {
        if (!isKnown(name))
            throw std::runtime_error(file.string() + ": there is no assistant " + name +
                                     ", only claude and chatgpt");
        m_clients.emplace(name, assistant.upstream(name));
    }
}

bool Assistants::isKnown(std::string_view name)
{
    return std::ranges::find(known, name, &Known::name) != known.end();
}

std::string Assistants::titleOf(std::string_view name)
{
    const auto found = std::ranges::find(known, name, &Known::name);
    return std::string(found == known.end() ? name : found->title);
}

const UpstreamClient *Assistants::find(std::string_view name) const
{
    const auto found = m_clients.find(name);
    return found == m_clients.end() ? nullptr : &found->second;
}
