// Benchmarks without a line, with Google Benchmark. Their times are shown, not checked; counted.cpp
// counts instructions.
#include "bench/busy_loop.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace
{

const int POLLED_REQUESTS = 8;
const int REGISTERS = 125;

// --- One exchange ---

void exchange(benchmark::State &state)
{
    BenchLink link;
    link.poll(static_cast<int>(state.range(1)), static_cast<int>(state.range(0)));
    for ([[maybe_unused]] auto turn : state)
        link.exchange();
}
BENCHMARK(exchange)
    ->ArgNames({"registers", "requests"})
    ->Args({1, 1})
    ->Args({125, 1})
    ->Args({1, 10000});

// --- Reads, alone and beside the loop ---

std::unique_ptr<BenchLink> sharedLink;
std::unique_ptr<BusyLoop> sharedLoop;

void startLink(const benchmark::State &)
{
    sharedLink = std::make_unique<BenchLink>();
    sharedLink->poll(POLLED_REQUESTS, REGISTERS);
    for (int i = 0; i < POLLED_REQUESTS; ++i)
        sharedLink->exchange();
}

void startLoop(const benchmark::State &state)
{
    startLink(state);
    sharedLoop = std::make_unique<BusyLoop>(*sharedLink);
}

void stop(const benchmark::State &)
{
    sharedLoop.reset();
    sharedLink.reset();
}

void get(benchmark::State &state)
{
    const int words = static_cast<int>(state.range(0));
    const QString address = QStringLiteral("20");
    const long before = sharedLoop ? sharedLoop->exchanges() : 0;
    const auto start = std::chrono::steady_clock::now();
    QByteArray value;
    for ([[maybe_unused]] auto turn : state)
        sharedLink->driver().GetRegisterData(0, KIND_HOLDING_WORD, address, 1, &value, words);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    if (sharedLoop && state.thread_index() == 0)
        state.counters["loop"] =
            static_cast<double>(sharedLoop->exchanges() - before) / taken.count();
}
BENCHMARK(get)
    ->Name("get-alone")
    ->ArgName("words")
    ->Arg(1)
    ->Arg(100)
    ->Setup(startLink)
    ->Teardown(stop)
    ->UseRealTime();
BENCHMARK(get)
    ->Name("get-beside-loop")
    ->ArgName("words")
    ->Arg(1)
    ->Arg(100)
    ->Threads(1)
    ->Threads(2)
    ->Threads(4)
    ->Setup(startLoop)
    ->Teardown(stop)
    ->UseRealTime();

// The loop without readers.
void loop(benchmark::State &state)
{
    for ([[maybe_unused]] auto turn : state)
        sharedLink->exchange();
}
BENCHMARK(loop)->Name("loop-alone")->Setup(startLink)->Teardown(stop)->UseRealTime();

// --- Lists ---

void rebuild(benchmark::State &state)
{
    BenchLink link;
    const QList<VAR_ITEM> items = shuffledWords(static_cast<int>(state.range(0)),
                                                state.range(1) == 0 ? Spacing::NEAR : Spacing::FAR);
    for ([[maybe_unused]] auto turn : state)
        link.driver().ReCreatReadVarList(&items);
}
BENCHMARK(rebuild)
    ->ArgNames({"variables", "far"})
    ->ArgsProduct({{100, 1000, 10000, 100000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

// The longest exchange of the communication loop while another thread rebuilds its list.
void holdUp(benchmark::State &state)
{
    BenchLink link;
    link.poll(POLLED_REQUESTS, REGISTERS);
    const QList<VAR_ITEM> items = shuffledWords(static_cast<int>(state.range(0)),
                                                state.range(1) == 0 ? Spacing::NEAR : Spacing::FAR);
    BusyLoop loopBeside(link);
    for ([[maybe_unused]] auto turn : state) {
        loopBeside.takeLongest();
        link.driver().ReCreatReadVarList(&items);
        loopBeside.awaitTurn();
        state.SetIterationTime(loopBeside.takeLongest());
    }
}
BENCHMARK(holdUp)
    ->Name("loop-held-up-by-rebuild")
    ->ArgNames({"variables", "far"})
    ->ArgsProduct({{100, 1000, 10000, 100000}, {0, 1}})
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

void fillQueue(benchmark::State &state)
{
    BenchLink link;
    RW_VAR write;
    write.rwFlag = REQUEST_WRITE;
    write.varKind = KIND_HOLDING_WORD;
    write.station = 1;
    write.count = 1;
    write.value = QByteArray("\x2A\0", 2);
    for ([[maybe_unused]] auto turn : state) {
        for (int i = 0; i < LIMIT_QUEUE_ENTRIES; ++i) {
            write.addr = 2 * i;
            link.driver().AddListWriteVar(&write, QUEUE_CHECKED);
        }
        state.PauseTiming();
        link.drain();
        state.ResumeTiming();
    }
}
BENCHMARK(fillQueue)->Name("queue-1024-writes")->Unit(benchmark::kMillisecond);

void drainQueue(benchmark::State &state)
{
    BenchLink link;
    const QByteArray words(2 * LIMIT_QUEUE_ENTRIES, '\1');
    for ([[maybe_unused]] auto turn : state) {
        state.PauseTiming();
        for (int i = 0; i < LIMIT_QUEUE_ENTRIES; ++i)
            link.driver().SetRegisterData(QString(), KIND_HOLDING_WORD, QString::number(i), 1,
                                          &words, 1, 1, i);
        state.ResumeTiming();
        link.drain();
    }
}
BENCHMARK(drainQueue)->Name("carry-out-1024-writes")->Unit(benchmark::kMillisecond);

void writeBits(benchmark::State &state)
{
    BenchLink link;
    const int bits = static_cast<int>(state.range(0));
    const QByteArray values(bits, '\1');
    const QString address = QStringLiteral("0.0");
    for ([[maybe_unused]] auto turn : state) {
        link.driver().SetRegisterData(QString(), KIND_HOLDING_BIT, address, 1, &values, bits, 1, 1);
        state.PauseTiming();
        link.drain();
        state.ResumeTiming();
    }
}
BENCHMARK(writeBits)
    ->Name("write-bits-in-one-call")
    ->ArgName("bits")
    ->Arg(10000)
    ->Arg(1 << 20)
    ->Unit(benchmark::kMillisecond);

// The longest read that one call can name, in the smallest pieces.
void readOnce(benchmark::State &state)
{
    BenchLink link;
    link.setMaxRegs(1);
    for ([[maybe_unused]] auto turn : state) {
        RW_VAR request;
        request.varKind = KIND_HOLDING_WORD;
        request.addrText = QStringLiteral("0");
        request.station = 1;
        request.count = LIMIT_REGISTERS;
        link.driver().AddListOnceReadVar(&request, QUEUE_CHECKED);
        state.PauseTiming();
        link.drain();
        state.ResumeTiming();
    }
}
BENCHMARK(readOnce)->Name("read-once-65536-pieces")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
