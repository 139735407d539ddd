#pragma once

#include <string>

/// An edited text in the form of a chat completion.
struct ChatAnswer
{
    std::string model;
    std::string text;

    /// One JSON object.
    std::string whole() const;
    /// Server-sent events: the text, the reason for the end, and the mark of the end.
    std::string events() const;
};
