// A freshly loaded driver for each test, spoken to by its exported names.
#pragma once

#include "driver/modbus_rtu_master.h"
#include "host/driver_library.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Answers that fit any one-register read, and any function 16 write: station and register numbers
// of a reply are not looked at.
const char *const GOOD_READ = "01 03 02 00 2A 39 9B";
const char *const GOOD_WRITE = "01 10 00 00 00 01 01 C9";

class DriverTest : public ::testing::Test
{
protected:
    DriverTest();
    ~DriverTest() override;

    /// The frame that goes out next, "01 03 ..."; empty for none.
    std::string next();

    /// next(), no more than the first `bytes` bytes of it.
    std::string next(size_t bytes);

    /// DataCom's verdict on an answer; `length` where it is not the number of bytes.
    int answer(const char *hex);
    int answer(const char *hex, int length);
    int silence() { return answer(""); }

    /// Takes one request of one-register frames off the line, well answered; its frame's first
    /// bytes.
    std::string serve(size_t bytes = 4);

    int rebuild(const char *items);

    /// A write record in queue form. The value is hex.
    RW_VAR write(int kind, int addr, int count, const char *value, int ownerId = 0,
                 int ownerTag = 0) const;

    /// A record in read form.
    RW_VAR read(int area, int firstRegister, int count) const;

    /// A one-shot request as a host makes it.
    RW_VAR once(int kind, const char *text, int length) const;

    /// What the store holds, as hex.
    std::string stored(int kind, const char *text, int length, int station = 1);

    /// SetRegisterData at station 1.
    int set(int kind, const char *text, const char *value, int length, int ownerId = 0,
            int ownerTag = 0);

    ComInfo info;
    std::vector<std::string> events; ///< callbacks: "done LINK OWNER TAG STATUS", "fail OWNER FLAG"
    DriverLibrary driver;
    Modbus_RTU_Master &core;
};

/// "7:10:2 1:24.3:1": kind, address text and length of each item.
QList<VAR_ITEM> itemsFrom(const char *text);

/// "6[0,4) 7[10,42)": area or kind, first and last address of each record.
std::string rangesOf(const QList<RW_VAR> &list);

QByteArray bytesFrom(const char *hex);
std::string hexFrom(const QByteArray &bytes);
