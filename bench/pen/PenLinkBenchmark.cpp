#include "Allocations.h"

#include "json/LiveMemory.h"
#include "support/ScriptedRadio.h"

#include <InkoraKit/InkoraKit.h>
#include <InkoraKit/virtual/RadioTrace.h>
#include <InkoraKit/virtual/ReplayRadio.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace InkoraKit {
namespace {

struct Handler : InkoraHandler {};

/// Counts colours, and whether each is the successor of the one before.
struct CountingHost : InkoraProtocols {
    void didConnectedToPeripheral() override { isConnected = true; }
    void didPeripheralCaptured(const UIColor& colour) override {
        const auto channel = [](double value) { return static_cast<int>(value * 255.0 + 0.5); };
        const int number =
            channel(colour.red()) << 16 | channel(colour.green()) << 8 | channel(colour.blue());
        if (number != last + 1) ++reordered;
        last = number;
        ++received;
    }
    bool isConnected = false;
    std::int64_t received = 0;
    std::int64_t reordered = 0;
    int last = 0;
};

Data numbered(std::int64_t number) {
    return {1, static_cast<std::uint8_t>(number >> 16), static_cast<std::uint8_t>(number >> 8),
            static_cast<std::uint8_t>(number)};
}

/// The engine, connected over a radio whose notifications the benchmark sends.
class ConnectedEngine {
public:
    ConnectedEngine() {
        ScriptedRadio::install();
        handler->publishHandler(host);
        handler->startInkoraHandler();
        run();
        events().adapterStateChanged(CBManagerState::poweredOn);
        run();
        Sighting seen{.identifier = pen, .name = {}, .advertisement = {}, .rssi = -50};
        seen.advertisement.localName = "InkoraPen";
        events().sighted(seen);
        run();
        events().connected(pen);
        run();
        events().servicesDiscovered(pen, {{1, CBUUID("1F1F")}}, {});
        run();
        events().characteristicsDiscovered(pen, 1, {{colour, CBUUID("1F14")}}, {});
        run();
    }
    ~ConnectedEngine() { uninstallRadio(); }

    void notify(std::int64_t number) { events().valueNotified(pen, colour, numbered(number)); }

    std::shared_ptr<CountingHost> host = std::make_shared<CountingHost>();

private:
    static RadioListener& events() { return *ScriptedRadio::opened()->events; }
    static void run() { RunLoop::main().runFor(0); }

    static constexpr AttributeHandle colour = 2;
    const UUID pen;
    std::shared_ptr<InkoraHandler> handler = std::make_shared<Handler>();
};

/// Calls `step` from a block of its own `count` times over, as a radio that is served by the run
/// loop would.
void repeatOnRunLoop(std::int64_t count, const std::function<void(std::int64_t)>& step) {
    struct Driver {
        void operator()() const {
            step(*done);
            if (++*done < count)
                RunLoop::main().post(*this);
            else
                RunLoop::main().post([] { RunLoop::main().stop(); });
        }
        std::int64_t count;
        const std::function<void(std::int64_t)>& step;
        std::int64_t* done;
    };
    std::int64_t done = 0;
    RunLoop::main().post(Driver{count, step, &done});
    RunLoop::main().run();
}

std::string traceFile() {
    return std::filesystem::temp_directory_path() / "pen-benchmark.jsonl";
}

/// From the radio port through the central manager and the engine to the host's callback: one
/// colour a pass of the run loop, or a burst of them; without a recording, and with one.
void ColourNotification(benchmark::State& state) {
    RunLoop::main().setClock(std::make_shared<SystemClock>());
    const auto trace = state.range(1) ? RadioTrace::record(traceFile()) : nullptr;
    ConnectedEngine engine;
    const std::int64_t burst = state.range(0);
    std::int64_t sent = 0;
    const std::function<void(std::int64_t)> send = [&](std::int64_t) {
        for (std::int64_t i = 0; i < burst; ++i) engine.notify(++sent);
    };
    repeatOnRunLoop(1000, send);  // until every queue has the room it needs
    const std::uint64_t before = allocationCount();
    for (auto batch : state) {
        (void)batch;
        repeatOnRunLoop(1000, send);
    }
    const auto colours = static_cast<double>(state.iterations() * 1000 * burst);
    state.counters["per_colour"] =
        benchmark::Counter(colours, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["allocations_per_colour"] =
        static_cast<double>(allocationCount() - before) / colours;
}
BENCHMARK(ColourNotification)->ArgNames({"burst", "recorded"})->ArgsProduct({{1, 32}, {0, 1}});

/// A pen that is connected and sends colours, a millisecond apart: reads the trace of 10,000 events
/// and plays it to the end, with nobody waiting.
void ReplayOfATrace(benchmark::State& state) {
    constexpr int events = 10'000;
    RunLoop::main().setClock(std::make_shared<SystemClock>());
    {
        const auto trace = RadioTrace::record(traceFile());
        ConnectedEngine engine;
        for (int i = 5; i < events; ++i) {
            RunLoop::main().runFor(0.001);
            engine.notify(i);
        }
        RunLoop::main().runFor(0.001);
    }
    RunLoop::main().setClock(std::make_shared<VirtualClock>());
    std::int64_t received = 0;
    std::size_t departures = 0;
    for (auto run : state) {
        (void)run;
        const auto radio = ReplayRadio::install(traceFile());
        radio->setWhenOver([] { RunLoop::main().stop(); });
        const auto host = std::make_shared<CountingHost>();
        const std::shared_ptr<InkoraHandler> handler = std::make_shared<Handler>();
        handler->publishHandler(host);
        handler->startInkoraHandler();
        RunLoop::main().run();
        received = host->received;
        departures += radio->departures().size();
    }
    state.counters["colours"] = static_cast<double>(received);
    state.counters["departures"] = static_cast<double>(departures);
}
BENCHMARK(ReplayOfATrace)->Unit(benchmark::kMillisecond);

/// All in one go, as after a stall: none may be lost or overtaken.
void MillionColours(benchmark::State& state) {
    RunLoop::main().setClock(std::make_shared<SystemClock>());
    constexpr std::int64_t million = 1'000'000;
    std::int64_t lost = 0;
    std::int64_t reordered = 0;
    for (auto run : state) {
        (void)run;
        ConnectedEngine engine;
        for (std::int64_t i = 1; i <= million; ++i) engine.notify(i);
        RunLoop::main().runFor(0);
        lost += million - engine.host->received;
        reordered += engine.host->reordered;
    }
    state.counters["lost"] = static_cast<double>(lost);
    state.counters["reordered"] = static_cast<double>(reordered);
}
BENCHMARK(MillionColours)->Unit(benchmark::kMillisecond);

/// What the kit itself takes from the start to `didConnectedToPeripheral`, with a pen that
/// advertises every 100 ms: the clock's time is the pen's interval, the rest is ours.
void StartToConnected(benchmark::State& state) {
    const auto clock = std::make_shared<VirtualClock>();
    RunLoop::main().setClock(clock);
    double seconds = 0;
    for (auto run : state) {
        (void)run;
        const auto radio = VirtualRadio::install();
        radio->add(std::make_shared<VirtualPen>());
        const auto host = std::make_shared<CountingHost>();
        const std::shared_ptr<InkoraHandler> handler = std::make_shared<Handler>();
        handler->publishHandler(host);
        const double began = clock->now();
        handler->startInkoraHandler();
        while (!host->isConnected) RunLoop::main().runOnce(1);
        seconds += clock->now() - began;
    }
    state.counters["clock_seconds"] = seconds / static_cast<double>(state.iterations());
}
BENCHMARK(StartToConnected)->Unit(benchmark::kMicrosecond);

/// An endless scan among a crowd, each of which is heard ten times: the memory that it takes, at
/// its end and at most, and how many reports too many there were.
void CrowdInAScan(benchmark::State& state) {
    struct Listener : CBCentralManagerDelegate {
        void centralManagerDidDiscoverPeripheral(CBCentralManager&,
                                                 const std::shared_ptr<CBPeripheral>&,
                                                 const Dictionary&, const NSNumber&) override {
            ++reports;
        }
        std::int64_t reports = 0;
    };
    constexpr int crowd = 20'000;
    ScriptedRadio::install();
    const auto listener = std::make_shared<Listener>();
    CBCentralManager central(listener);
    RunLoop::main().runFor(0);
    ScriptedRadio::opened()->events->adapterStateChanged(CBManagerState::poweredOn);
    RunLoop::main().runFor(0);
    Sighting sighting{.identifier = UUID(), .name = {}, .advertisement = {}, .rssi = -90};
    sighting.advertisement.localName = "An advertiser of the crowd";
    sighting.advertisement.serviceUUIDs = {CBUUID("180F"), CBUUID("180A")};
    sighting.advertisement.manufacturerData = Data(std::vector<std::uint8_t>(24));
    double most = 0;
    for (auto scan : state) {
        (void)scan;
        central.scanForPeripherals();
        const double before = heapInUse();
        for (int i = 0; i < 10 * crowd; ++i) {
            UUID::Bytes bytes{};
            bytes[14] = static_cast<std::uint8_t>(i % crowd >> 8);
            bytes[15] = static_cast<std::uint8_t>(i % crowd);
            sighting.identifier = UUID(bytes);
            ScriptedRadio::opened()->events->sighted(sighting);
            RunLoop::main().runFor(0);
            most = std::max(most, heapInUse() - before);
        }
        state.counters["bytes"] = heapInUse() - before;
        central.stopScan();
    }
    state.counters["bytes_at_most"] = most;
    state.counters["repeated"] =
        static_cast<double>(listener->reports - crowd * state.iterations());
    uninstallRadio();
}
BENCHMARK(CrowdInAScan)->Iterations(1)->Unit(benchmark::kMillisecond);

/// A second of a connected and silent pen, by the real clock.
void IdleWhileConnected(benchmark::State& state) {
    RunLoop::main().setClock(std::make_shared<SystemClock>());
    const auto radio = VirtualRadio::install();
    radio->add(std::make_shared<VirtualPen>());
    const auto host = std::make_shared<CountingHost>();
    const std::shared_ptr<InkoraHandler> handler = std::make_shared<Handler>();
    handler->publishHandler(host);
    handler->startInkoraHandler();
    while (!host->isConnected) RunLoop::main().runOnce(1);
    RunLoop::main().runFor(0.1);
    const auto sleeps = [] {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        return usage.ru_nvcsw;
    };
    const auto before = sleeps();
    for (auto second : state) {
        (void)second;
        RunLoop::main().runFor(1);
    }
    // The end of each second is the benchmark's own.
    state.counters["wake_ups"] =
        static_cast<double>(sleeps() - before - static_cast<long>(state.iterations()));
    state.counters["scheduled"] = RunLoop::main().timeUntilDue().has_value();
}
BENCHMARK(IdleWhileConnected)->Iterations(3)->Unit(benchmark::kSecond);

}  // namespace
}  // namespace InkoraKit
