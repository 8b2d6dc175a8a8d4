// A freshly loaded driver, spoken to by its exported names, with a link that tests start from.
#pragma once

#include "driver/modbus_rtu_master.h"
#include "host/core/loading/driver_library.h"

#include <gtest/gtest.h>

#include <string>

// Answers that fit any one-register read, and any function 16 write: station and register numbers
// of a reply are not looked at.
const char *const GOOD_READ = "01 03 02 00 2A 39 9B";
const char *const GOOD_WRITE = "01 10 00 00 00 01 01 C9";

/// maxRegs 32, defaultStation 1, retryLimit 0, localArea 4, device mode, linkId 9, callbacks
/// registered. One at a time: the callbacks carry no pointer of their own.
struct DriverUnderTest {
    DriverUnderTest();

    /// The frame that goes out next, as hex; "none".
    std::string next();

    /// DataCom's verdict on an answer.
    int answer(const QByteArray &reply, int length);
    int answer(const char *hex);

    int rebuild(const char *items);

    /// The callbacks since the last call: "done LINK OWNER TAG STATUS, fail OWNER FLAG"; "none".
    std::string takeEvents();

    ComInfo link;
    velko::DriverLibrary driver;
    Modbus_RTU_Master &core;
};

class DriverTest : public ::testing::Test, protected DriverUnderTest
{
};

/// "7:10:2 1:24.3:1": kind, address text and length of each item.
QList<VAR_ITEM> itemsFrom(const QString &text);

/// Under the sanitizers and in emulation runs are shorter.
#if defined(__SANITIZE_ADDRESS__) || defined(__arm__)
const bool SLOW_MACHINE = true;
#else
const bool SLOW_MACHINE = false;
#endif

/// A positive number from the environment, for longer runs than those of the tests.
int numberFrom(const char *variable, int otherwise);

QByteArray bytesFrom(const char *hex);
std::string hexFrom(const QByteArray &bytes);
