// Measures the benefit of merging variables into few requests: compares the driver's plans with
// others.
#include "bench/comparison.h"
#include "host/views/text_table.h"

#include <CLI/CLI.hpp>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <cstdio>
#include <stdexcept>

using namespace velko;

namespace
{

struct Options {
    std::string library = DRIVER_LIBRARY;
    int maxRegs = 125;
    unsigned seed = 1;
    double turnaround = 0;
    bool asTable = false;
    bool asCsv = false;
};

using Comparisons = std::vector<Comparison>;
using Measures = std::vector<Measure>;

Comparisons compareAll(const Options &options, const Measures &measures)
{
    Comparisons all;
    for (const TagSet set : {TagSet::DENSE, TagSet::SCATTERED, TagSet::MIXED})
        for (const int size : {100, 300, 1000, 3000, 10000})
            all.push_back(compare(options.library, set, makeTags(set, size, options.seed),
                                  options.maxRegs, measures));
    return all;
}

// --- Output ---

std::string fixed(double number, int digits)
{
    return QString::number(number, 'f', digits).toStdString();
}

int digitsOf(const Measure &measure)
{
    return measure.unit == "ms" ? 1 : 0;
}

QJsonArray samples(double computed)
{
    return {std::round(computed * 1000) / 1000};
}

void printJson(const Comparison &comparison, const Measure &measure, const std::string &idEnd,
               const std::string &titleEnd, QJsonObject figures)
{
    const std::string set = nameOf(comparison.set);
    const std::string size = std::to_string(comparison.variables);
    const std::string id = "frames-" + set + "-" + size + "-" + measure.id + "-" + idEnd;
    const std::string title = measure.title + titleEnd + ", " + set + ", " + size + " variables";
    figures["id"] = QString::fromStdString(id);
    figures["title"] = QString::fromStdString(title);
    figures["unit"] = QString::fromStdString(measure.unit);
    std::puts(QJsonDocument(figures).toJson(QJsonDocument::Compact).constData());
}

void printJson(const Comparison &comparison, const Measures &measures)
{
    const std::vector<Method> &methods = comparison.methods;
    for (size_t i = 0; i < measures.size(); ++i) {
        const QJsonArray ours = samples(methods.front().costs[i]);
        for (size_t m = 1; m < methods.size(); ++m)
            printJson(comparison, measures[i], "vs-" + methods[m].id, "",
                      {{"ours", ours},
                       {"peer", samples(methods[m].costs[i])},
                       {"peer_name", QString::fromStdString(methods[m].name)}});
        if (measures[i].unit != "requests") // splitting saves no requests
            printJson(comparison, measures[i], "lost-in-gaps", ", lost in gaps",
                      {{"ours", samples(comparison.lostInGaps[i])}});
    }
}

void addRow(TextTable &table, const Comparison &comparison, const std::string &name,
            const std::vector<double> &costs, const Measures &measures)
{
    TextTable::Row row = {nameOf(comparison.set), std::to_string(comparison.variables), name};
    for (size_t i = 0; i < measures.size(); ++i)
        row.push_back(fixed(costs[i], digitsOf(measures[i])));
    table.add(row);
}

void printTable(const Comparisons &all, const Measures &measures, unsigned seed)
{
    TextTable::Row headings = {"set", "variables", "plan"};
    for (const Measure &measure : measures)
        headings.push_back(measure.id);
    TextTable table(headings);
    for (const Comparison &comparison : all) {
        for (const Method &method : comparison.methods)
            addRow(table, comparison, method.name, method.costs, measures);
        addRow(table, comparison, "driver: lost in gaps", comparison.lostInGaps, measures);
    }
    std::printf("Per cycle; seed %u; wire times in ms. Lost in gaps: savings from splitting the "
                "driver's requests.\n\n",
                seed);
    for (const std::string &line : table.lines())
        std::puts(line.c_str());
}

void printCsv(const Comparisons &all, const Measures &measures)
{
    std::string line = "set,variables,measure";
    for (const Method &method : all.front().methods)
        line += "," + method.id;
    std::puts(line.c_str());
    for (const Comparison &comparison : all)
        for (size_t i = 0; i < measures.size(); ++i) {
            line = nameOf(comparison.set) + "," + std::to_string(comparison.variables) + ","
                   + measures[i].id;
            for (const Method &method : comparison.methods)
                line += "," + fixed(method.costs[i], 3);
            std::puts(line.c_str());
        }
}

// --- Program ---

void addOptions(CLI::App &program, Options &options)
{
    program.add_option("--library", options.library, "Driver library file")->capture_default_str();
    program.add_option("--max-regs", options.maxRegs, "Largest number of registers per request")
        ->check(CLI::Range(1, 125))
        ->capture_default_str();
    program.add_option("--seed", options.seed, "Seed of the sets")->capture_default_str();
    program.add_option("--turnaround", options.turnaround, "Turnaround time of the slave in ms")
        ->check(CLI::Range(0.0, 1000.0))
        ->capture_default_str();
    CLI::Option *const table = program.add_flag("--table", options.asTable, "Print a table");
    program.add_flag("--csv", options.asCsv, "Print CSV rows for the plot")->excludes(table);
}

void run(const Options &options)
{
    const Measures measures = allMeasures(options.turnaround);
    const Comparisons all = compareAll(options, measures);
    if (options.asTable)
        printTable(all, measures, options.seed);
    else if (options.asCsv)
        printCsv(all, measures);
    else
        for (const Comparison &comparison : all)
            printJson(comparison, measures);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw std::runtime_error("cannot write the output");
}

int parseAndRun(int argc, char *argv[])
{
    Options options;
    CLI::App program("Compares the driver's requests with one request per variable, with merging "
                     "only adjacent variables, and with the best possible plan.");
    addOptions(program, options);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return program.exit(error) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    run(options);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        return parseAndRun(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "frames_saved: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
