// Repeats one operation under valgrind's callgrind, which counts instructions and allocations. The
// program starts and stops the counting itself, so that loading and preparation do not count.
#include "bench/bench_link.h"

#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <string>

namespace
{

struct Job {
    int times;
    int size;
    int length;
};

// The first call is not counted: it resolves symbols and allocates what stays, such as images.
void count(int times, const std::function<void()> &work)
{
    work();
    CALLGRIND_START_INSTRUMENTATION;
    for (int i = 0; i < times; ++i)
        work();
    CALLGRIND_STOP_INSTRUMENTATION;
}

// The warm-up is long enough for every request of the list and for the memory in which the list
// rotates.
void exchange(const Job &job)
{
    BenchLink link;
    link.poll(job.length, job.size);
    for (int i = 0; i < 5 * job.length; ++i)
        link.exchange();
    count(job.times, [&] { link.exchange(); });
}

void get(const Job &job)
{
    BenchLink link;
    link.poll(1, 125);
    QByteArray value;
    const QString address = QStringLiteral("20");
    count(job.times, [&] {
        link.driver().GetRegisterData(0, KIND_HOLDING_WORD, address, 1, &value, job.size);
    });
}

void rebuild(const Job &job)
{
    BenchLink link;
    const QList<VAR_ITEM> items =
        shuffledWords(job.size, job.length == 0 ? Spacing::NEAR : Spacing::FAR);
    count(job.times, [&] { link.driver().ReCreatReadVarList(&items); });
}

void writeBits(const Job &job)
{
    BenchLink link;
    const QByteArray bits(job.size, '\1');
    const QString address = QStringLiteral("0.0");
    count(job.times, [&] {
        link.driver().SetRegisterData(QString(), KIND_HOLDING_BIT, address, 1, &bits, job.size, 1,
                                      1);
    });
}

int number(const char *text)
{
    return std::max(0, std::atoi(text));
}

} // namespace

int main(int argc, char **argv)
try {
    const std::map<std::string, void (*)(const Job &)> jobs = {
        {"exchange", exchange}, {"get", get}, {"rebuild", rebuild}, {"write-bits", writeBits}};
    const auto job = argc == 5 ? jobs.find(argv[1]) : jobs.end();
    if (job == jobs.end() || number(argv[2]) < 1 || number(argv[3]) < 1) {
        std::fputs("usage: counted exchange TIMES REGISTERS REQUESTS\n"
                   "       counted get TIMES WORDS 0\n"
                   "       counted rebuild TIMES VARIABLES 0|1    1: too far apart to merge\n"
                   "       counted write-bits TIMES BITS 0\n",
                   stderr);
        return 2;
    }
    job->second({number(argv[2]), number(argv[3]), number(argv[4])});
    return 0;
} catch (const std::exception &error) {
    std::fprintf(stderr, "counted: %s\n", error.what());
    return 1;
}
