#include "AllocationCount.h"
#include "dictation/HotkeyMonitor.h"

#include <benchmark/benchmark.h>

namespace {

class NoTaps final : public KeyTaps
{
public:
    std::unique_ptr<KeyTap> install(std::span<const KeyChord>, Handler) override { return nullptr; }
};

void decide(benchmark::State &state, const KeyEvent &event)
{
    NoTaps taps;
    int triggers = 0;
    HotkeyMonitor monitor(
        taps, {}, [&] { ++triggers; }, [] {});
    monitor.setInterceptEscape(true);
    const uint64_t before = allocationCount();
    for (auto _ : state)
        benchmark::DoNotOptimize(monitor.handle(event));
    state.counters["allocations"] = static_cast<double>(allocationCount() - before);
}

void tapDecisionPass(benchmark::State &state)
{
    decide(state, {KeyEventType::keyDown, 0, KeyFlags::shift, false});
}

void tapDecisionShortcut(benchmark::State &state)
{
    decide(state, {KeyEventType::keyDown, 49, KeyFlags::fn, false});
}

} // namespace

BENCHMARK(tapDecisionPass);
BENCHMARK(tapDecisionShortcut);
