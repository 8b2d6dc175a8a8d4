// A master without driver and host: write, poll, read and a silent interval. An exchange takes only
// the time of the operating system and of the slave.
#include "bench/masters/plc_values.h"
#include "bench/masters/poll_task.h"
#include "bench/masters/raw_port.h"
#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"

#include <chrono>
#include <stdexcept>
#include <thread>

using namespace velko;

namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

QByteArray requestFor(const Place &place)
{
    QByteArray frame;
    for (const int byte : {STATION, place.isInput ? 4 : 3, place.first >> 8, place.first,
                           place.count >> 8, place.count})
        frame.append(static_cast<char>(byte));
    return frame + crc16(frame);
}

void check(const QByteArray &reply, const std::vector<uint16_t> &expected)
{
    if (reply.size() != static_cast<int>(READ_OVERHEAD_BYTES + 2 * expected.size())
        || !endsInItsCrc(reply))
        throw std::runtime_error("no reply, or a bad one");
    std::vector<uint16_t> values;
    for (int i = 3; i < reply.size() - 2; i += 2)
        values.push_back(static_cast<uint16_t>(byteAt(reply, i) << 8 | byteAt(reply, i + 1)));
    requireSame(values, expected);
}

// A reply that is complete before its bytes can have passed the line means that the line is too
// fast.
void requireNotEarly(Clock::duration elapsed, microseconds leastTime)
{
    if (elapsed >= leastTime)
        return;
    throw std::runtime_error(
        "the slave is faster than the line: a reply was complete after "
        + std::to_string(std::chrono::duration_cast<microseconds>(elapsed).count()) + " us, not "
        + std::to_string(leastTime.count()));
}

void poll(const PollTask &task, microseconds silence, microseconds leastTime)
{
    const Place place = placeOf(task.items().first());
    const std::vector<uint16_t> expected = plcValues({place});
    const QByteArray request = requestFor(place);
    RawPort port(task.device());
    for (int cycle = 0; cycle < task.cycles(); ++cycle) {
        const Clock::time_point begin = Clock::now();
        port.write(request.constData(), request.size());
        const int count = port.read(READ_OVERHEAD_BYTES + 2 * place.count);
        const Clock::time_point end = Clock::now();
        requireNotEarly(end - begin, leastTime);
        check(QByteArray(port.bytes(), count), expected);
        std::this_thread::sleep_until(end + silence);
    }
}

int run(int argc, char **argv)
{
    CLI::App program("Reads one variable with system calls only.");
    const PollTask task(program);
    int silence = 0;
    int leastTime = 0;
    program.add_option("--silence", silence, "Silent interval between reply and request in us");
    program.add_option("--least-time", leastTime,
                       "Least time from a request to the end of its reply in us; less is an error");
    CLI11_PARSE(program, argc, argv);
    poll(task, microseconds(silence), microseconds(leastTime));
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    return exitStatusOf(run, argc, argv);
}
