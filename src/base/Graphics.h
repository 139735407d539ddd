#pragma once

/// What the computer draws with.
class Graphics
{
public:
    virtual ~Graphics() = default;

    /// Whether there is a graphics processor. Without one, windows are drawn by the processor directly:
    /// imitating one costs a hundred megabytes and is slower.
    virtual bool hasProcessor() const = 0;
};
