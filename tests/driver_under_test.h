// A freshly loaded driver, called by its exported names, with the settings that the tests start
// from.
#pragma once

#include "driver/modbus_rtu_master.h"
#include "host/core/loading/driver_library.h"
#include "velko_modbus_rtu.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <gtest/gtest.h>

#include <string>

// Replies that fit every one-register read and every function 16 write: the driver does not check
// station and register address of a reply.
const char *const GOOD_READ = "01 03 02 00 2A 39 9B";
const char *const GOOD_WRITE = "01 10 00 00 00 01 01 C9";

/// maxRegs 32, defaultStation 1, retryLimit 0, localArea 4, device mode, linkId 9, callbacks
/// registered. Only one object may exist at a time, because the callbacks have no context pointer.
struct DriverUnderTest {
    DriverUnderTest();

    /// Returns the next frame as hex, or "none".
    std::string next();

    /// Passes a reply and returns DataCom's result.
    int answer(const QByteArray &reply, int length);
    int answer(const char *hex);

    int rebuild(const char *items);

    /// Returns the callbacks since the last call: "done LINK OWNER TAG STATUS, fail OWNER FLAG", or
    /// "none".
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

/// Runs are shorter under the sanitizers and in emulation.
#if defined(__SANITIZE_ADDRESS__) || defined(__arm__)
const bool SLOW_MACHINE = true;
#else
const bool SLOW_MACHINE = false;
#endif

/// Returns a positive number from the environment variable, for longer runs, or `otherwise`.
int numberFrom(const char *variable, int otherwise);

QByteArray bytesFrom(const char *hex);
std::string hexFrom(const QByteArray &bytes);
