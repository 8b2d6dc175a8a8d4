// The serial port needs the application object.
#include "tests/loop_under_test.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return registerLoopCases() ? RUN_ALL_TESTS() : 1;
}
