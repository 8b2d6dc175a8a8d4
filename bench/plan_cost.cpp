#include "bench/plan_cost.h"

#include "host/core/line/replies.h"

#include <algorithm>
#include <limits>

using namespace velko;

namespace
{

const int REQUEST_BYTES = 8;
const int BYTES_PER_REGISTER = 2;
const int CHARACTER_BITS = 11;
const double SILENCE_CHARACTERS = 3.5;
const int FASTEST_WITH_CHARACTERS = 19200; // above this baud rate the silent interval is constant
const double SHORTEST_SILENCE = 1.750;

using Position = std::vector<int>::const_iterator;

Measure wireTimeAt(int baudRate, double turnaround)
{
    const double character = 1000.0 * CHARACTER_BITS / baudRate;
    const double silence =
        baudRate > FASTEST_WITH_CHARACTERS ? SHORTEST_SILENCE : SILENCE_CHARACTERS * character;
    const std::string speed = std::to_string(baudRate);
    return {"wire-" + speed, "wire time per cycle at " + speed + " baud", "ms",
            (REQUEST_BYTES + READ_OVERHEAD_BYTES) * character + 2 * silence + turnaround,
            BYTES_PER_REGISTER * character};
}

int countOf(const RegisterSpan &span)
{
    return span.last - span.first + 1;
}

double requestCost(int registers, const Measure &measure)
{
    return measure.perRequest + registers * measure.perRegister;
}

// least[i]: the least cost of the first i wanted registers. Their last request ends at the last one
// and begins at a wanted one; every other plan costs more.
double leastCost(Position begin, Position end, int maxRegs, const Measure &measure)
{
    std::vector<double> least(static_cast<size_t>(end - begin) + 1, 0);
    for (Position last = begin; last != end; ++last) {
        double best = std::numeric_limits<double>::infinity();
        for (Position first = last + 1; first != begin;) {
            --first;
            const int count = *last - *first + 1;
            if (count > maxRegs)
                break;
            best = std::min(best, least[static_cast<size_t>(first - begin)]
                                      + requestCost(count, measure));
        }
        least[static_cast<size_t>(last - begin) + 1] = best;
    }
    return least.back();
}

} // namespace

std::vector<Measure> allMeasures(double turnaround)
{
    return {{"requests", "requests per cycle", "requests", 1, 0},
            {"bytes", "bytes per cycle, requests and replies", "bytes",
             REQUEST_BYTES + READ_OVERHEAD_BYTES, BYTES_PER_REGISTER},
            wireTimeAt(9600, turnaround),
            wireTimeAt(19200, turnaround),
            wireTimeAt(115200, turnaround)};
}

double costOf(const ReadPlan &plan, const Measure &measure)
{
    double cost = 0;
    for (const RegisterSpan &request : plan)
        cost += requestCost(countOf(request), measure);
    return cost;
}

double leastCost(const AreaRegisters &wanted, int maxRegs, const Measure &measure)
{
    double cost = 0;
    for (const auto &[area, numbers] : wanted)
        cost += leastCost(numbers.begin(), numbers.end(), maxRegs, measure);
    return cost;
}

double lostInGaps(const ReadPlan &plan, const AreaRegisters &wanted, const Measure &measure)
{
    double loss = 0;
    for (const RegisterSpan &request : plan) {
        const std::vector<int> &numbers = wanted.at(request.area);
        const Position begin = std::lower_bound(numbers.begin(), numbers.end(), request.first);
        const Position end = std::upper_bound(begin, numbers.end(), request.last);
        const int count = countOf(request);
        loss += requestCost(count, measure) - leastCost(begin, end, count, measure);
    }
    return loss;
}
