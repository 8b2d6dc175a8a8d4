// The plan of a link: which registers are wanted, and its time for many variables.
#include "host/core/links/link_file.h"
#include "host/core/plan/wanted_registers.h"
#include "host/views/plan_report.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>

using namespace velko;

namespace
{

std::string marks(const WantedRegisters &wanted, int station, const RegisterSpan &range)
{
    std::string text;
    for (const bool mark : wanted.marksIn(station, range))
        text += mark ? 'x' : '-';
    return text;
}

/// A file of words that are too far apart for common requests.
std::string fileOf(const QTemporaryDir &folder, int variables)
{
    const int stations = 30;
    std::string text = "[[link]]\nname = \"l\"\ndevice = \"/dev/x\"\nmaxRegs = 2\n";
    for (int i = 0; i < variables; ++i)
        text += "[[link.variable]]\nname = \"v" + std::to_string(i) + "\"\nstation = "
                + std::to_string(1 + i % stations) + "\nkind = \"holding word\"\naddress = "
                + std::to_string(i / stations * 10) + "\naccess = \"read-write\"\n";
    const QString path = folder.filePath(QString::number(variables));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromStdString(text));
    return path.toStdString();
}

/// The time of this thread, which other programs do not prolong.
double processorTime()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Returns the seconds from the file to the report, the best of three times.
double timeToPlan(const std::string &path, size_t requests)
{
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const double begin = processorTime();
        const Link link = readLinkFile(path).front();
        const size_t lines = planReport(link, RequestPlanner(DRIVER_LIBRARY).plan(link)).size();
        best = std::min(best, processorTime() - begin);
        EXPECT_EQ(lines, requests + 2);
    }
    return best;
}

} // namespace

TEST(Plan, WantedRegisters)
{
    Link link;
    for (const char *const text :
         {"7:10:u16:3", "7:11", "7:15:u32", "10:8", "1:40.0", "6:12", "8:13"})
        link.variables.push_back(parseVariable(text, 1, Access::READ));
    link.variables.push_back(parseVariable("7:18", 2, Access::READ));
    link.variables.push_back(parseVariable("7:19", 1, Access::WRITE));
    const WantedRegisters wanted(link);
    EXPECT_EQ(marks(wanted, 1, {AREA_HOLDING, 8, 22}), "--xxx--xxx--x--");
    EXPECT_EQ(marks(wanted, 1, {AREA_HOLDING, 12, 16}), "x--xx");
    EXPECT_EQ(marks(wanted, 1, {AREA_INPUT, 11, 13}), "-x-");
    EXPECT_EQ(marks(wanted, 2, {AREA_HOLDING, 18, 19}), "x-");
    EXPECT_EQ(marks(wanted, 3, {AREA_HOLDING, 18, 19}), "--");
}

TEST(Plan, TimeGrowsWithTheNumberOfVariables)
{
    const QTemporaryDir folder;
    const double few = timeToPlan(fileOf(folder, 5000), 5000);
    const double many = timeToPlan(fileOf(folder, 20000), 20000);
    EXPECT_LT(many, 10 * few) << few << " s and " << many << " s; a quadratic step takes 16 times";
}
