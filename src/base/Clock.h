#pragma once

#include <QDateTime>
#include <QTimeZone>

#include <chrono>
#include <functional>
#include <memory>

/// A pending call. Destroying it cancels the call, also from within the call itself.
class Timer
{
public:
    virtual ~Timer() = default;
};

/// Time as the program sees it: what o'clock it is, how long something took, and what happens later.
class Clock
{
public:
    using Duration = std::chrono::nanoseconds;

    virtual ~Clock() = default;

    /// The wall clock, in UTC. It may jump.
    virtual QDateTime now() const = 0;

    /// Where the user is, for what is a day to them. Always a valid zone; it may change while the program
    /// runs. Asked for on the main thread only.
    virtual QTimeZone timeZone() const = 0;

    /// Time since an arbitrary fixed instant; it never goes back and no clock setting moves it.
    virtual Duration monotonic() const = 0;

    /// Calls once on the main thread after the delay, never from within this call.
    [[nodiscard]] virtual std::unique_ptr<Timer> after(Duration delay, std::function<void()> call) = 0;

    /// Calls on the main thread every period, for as long as the timer is kept.
    [[nodiscard]] virtual std::unique_ptr<Timer> every(Duration period, std::function<void()> call) = 0;
};
