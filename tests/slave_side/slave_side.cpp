// Judges the host from the side of the slaves: gives random writes, reads over simulated lines with
// faults, and compares what the host reports with what the slaves have carried out.
#include "tests/slave_side/link_run.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>

#include <cstdio>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

using namespace slave_side;

namespace
{

struct Options {
    std::int64_t writes = std::numeric_limits<int>::max();
    std::int64_t exchanges = std::numeric_limits<int>::max();
    int links = 1;
    int seconds = 10;
    unsigned seed = 0;
    std::string faults = "all";
    std::vector<std::string> rates;
};

void addOptions(CLI::App &program, Options &options)
{
    program.add_option("--writes", options.writes, "end after this many writes");
    program.add_option("--exchanges", options.exchanges, "end after this many exchanges");
    program.add_option("--seconds", options.seconds, "end after this many seconds")
        ->capture_default_str();
    program.add_option("--links", options.links, "number of links side by side")
        ->check(CLI::Range(1, 64))
        ->capture_default_str();
    program.add_option("--seed", options.seed, "seed of the random numbers (default: the time)");
    program.add_option("--faults", options.faults, "none, late or all")
        ->check(CLI::IsMember({"none", "late", "all"}))
        ->capture_default_str();
    program.add_option("--rate", options.rates,
                       "per cent of the requests that a fault affects, as NAME=PERCENT");
}

Rates ratesFor(const Options &options)
{
    Rates rates = ratesOf(options.faults);
    std::string mistake = " is not NAME=PERCENT, with one of";
    for (const auto &rate : rates)
        mistake.append(" ").append(rate.first);
    for (const std::string &text : options.rates) {
        const size_t equals = text.find('=');
        const auto place = rates.find(text.substr(0, equals));
        if (place == rates.end()
            || !CLI::detail::lexical_cast(text.substr(equals + 1), place->second))
            throw CLI::ValidationError("--rate", text + mistake);
    }
    return rates;
}

using Runs = std::vector<std::unique_ptr<LinkRun>>;

void runAll(const Runs &runs, const Options &options)
{
    const auto share = [&options](std::int64_t all) {
        return (all + options.links - 1) / options.links;
    };
    const RunLimits limits = {share(options.writes), share(options.exchanges),
                              std::chrono::seconds(options.seconds)};
    std::vector<std::thread> threads;
    threads.reserve(runs.size());
    for (const auto &run : runs)
        threads.emplace_back(&LinkRun::run, run.get(), limits);
    for (std::thread &thread : threads)
        thread.join();
}

// Returns the number of differences.
long long summarise(const Runs &runs, const Options &options)
{
    Judge::Counts differences;
    Judge::Counts results;
    long long exchanges = 0, values = 0, chances = 0;
    for (const auto &run : runs) {
        exchanges += run->slaves().requests();
        values += run->judge().values();
        chances += run->slaves().chances();
        for (const auto &[result, count] : run->judge().results())
            results[result] += count;
        for (const auto &[kind, count] : run->judge().differences())
            differences[kind] += count;
    }
    long long differenceCount = 0;
    for (const auto &[kind, count] : differences) {
        std::printf("%lld x %s\n", static_cast<long long>(count), kind.c_str());
        differenceCount += count;
    }
    std::printf("%lld exchanges, %lld values compared, %lld responses withheld because their bytes "
                "passed a CRC by chance\n",
                exchanges, values, chances);
    long long writes = 0;
    for (const auto &[result, count] : results) {
        std::printf("%s%lld %s", writes > 0 ? ", " : "", static_cast<long long>(count),
                    result.c_str());
        writes += count;
    }
    std::printf("\n%lld writes, %d links, seed %u, %lld differences\n", writes, options.links,
                options.seed, differenceCount);
    return differenceCount;
}

int runWith(int argc, char *argv[])
{
    CLI::App program("Judges the host from the side of the slaves");
    Options options;
    addOptions(program, options);
    Rates rates;
    try {
        program.parse(argc, argv);
        rates = ratesFor(options);
    } catch (const CLI::Error &error) {
        return program.exit(error) == 0 ? 0 : 2;
    }
    if (options.seed == 0)
        options.seed = static_cast<unsigned>(Clock::now().time_since_epoch().count() % 1000000) + 1;
    std::printf("seed %u\n", options.seed);
    std::fflush(stdout);
    Runs runs;
    for (int link = 0; link < options.links; ++link)
        runs.push_back(std::make_unique<LinkRun>(link, options.seed, rates));
    runAll(runs, options);
    return summarise(runs, options) == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        const QCoreApplication application(argc, argv); // the serial port needs it
        return runWith(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "slave_side: %s\n", error.what());
        return 1;
    }
}
