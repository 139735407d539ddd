#pragma once

#include <cstdlib>
#include <memory>

struct FreeXcbReply
{
    void operator()(void *reply) const { std::free(reply); }
};

/// What the X server answered, or nothing: the request failed or the server is gone.
template <typename T>
using XcbReply = std::unique_ptr<T, FreeXcbReply>;

/// Takes ownership of an answer, an event or an error that XCB allocated.
template <typename T>
XcbReply<T> adopt(T *reply)
{
    return XcbReply<T>(reply);
}
