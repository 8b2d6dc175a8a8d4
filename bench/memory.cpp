// Heap memory of the lists and of the store, as counted by the C library.
#include "bench/bench_link.h"

#include <malloc.h>

#include <cstdio>
#include <exception>
#include <functional>

namespace
{

double bytesOf(const std::function<void()> &work)
{
    const auto used = [] {
        const struct mallinfo2 info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    const double before = used();
    work();
    return used() - before;
}

void print(const char *id, const char *title, double bytes)
{
    std::printf(R"({"id": "%s", "title": "%s", "unit": "bytes", "ours": [%.1f]})"
                "\n",
                id, title, bytes);
}

void measureRebuild(const char *id, const char *title, Spacing spacing)
{
    const int variables = 10000;
    BenchLink link;
    const QList<VAR_ITEM> items = shuffledWords(variables, spacing);
    const double bytes = bytesOf([&] { link.driver().ReCreatReadVarList(&items); });
    print(id, title, bytes / variables);
}

void measureStore()
{
    const int requests = 480;
    const int registers = 125;
    BenchLink link;
    link.poll(requests, registers);
    const double bytes = bytesOf([&] {
        for (int i = 0; i < 2 * requests; ++i)
            link.exchange();
    });
    print("memory-register", "one register of the store", bytes / (requests * registers));
}

} // namespace

int main()
try {
    measureRebuild("memory-variable-near", "one variable of the list, merged", Spacing::NEAR);
    measureRebuild("memory-variable-far", "one variable of the list, with its own request",
                   Spacing::FAR);
    measureStore();
    return 0;
} catch (const std::exception &error) {
    std::fprintf(stderr, "memory: %s\n", error.what());
    return 1;
}
