// The parts of every frame and their sizes in bytes. "Header" is what stands before the data.
#pragma once

#include "driver/units.h"
#include "velko_modbus_rtu.h"

// --- Modbus RTU ---

const int CRC_BYTES = 2;

const int READ_HOLDING_REGISTERS = 0x03;
const int READ_INPUT_REGISTERS = 0x04;
const int WRITE_MULTIPLE_REGISTERS = 0x10;

/// Station, function, first register, number of registers, CRC.
const int READ_REQUEST_BYTES = 1 + 1 + 2 + 2 + CRC_BYTES;

/// Of a read reply: station, function, byte count.
const int READ_REPLY_HEADER_BYTES = 1 + 1 + 1;

/// Of a function 16 request: station, function, first register, number of registers, byte count.
const int WRITE_HEADER_BYTES = 1 + 1 + 2 + 2 + 1;

/// Function 16 reply: station, function, first register, number of registers, CRC.
const int WRITE_REPLY_BYTES = 1 + 1 + 2 + 2 + CRC_BYTES;

/// Registers that one function 16 frame can carry before its length passes LIMIT_FRAME_BYTES.
const int WRITE_MOST_REGISTERS =
    (LIMIT_FRAME_BYTES - WRITE_HEADER_BYTES - CRC_BYTES) / REGISTER_BYTES;

/// No slave answers what is sent to it.
const int BROADCAST_STATION = 0;

// --- Remote mode ---

/// Length, ownerId, rwFlag, areaNo, station, varKind, addr, count, rmwMark, remoteArg.
const int REMOTE_HEADER_BYTES = 1 + 1 + 1 + 1 + 1 + 2 + 4 + 2 + 4 + 4;
const int REMOTE_SUM_BYTES = 1;
const int REMOTE_MOST_VALUE_BYTES = LIMIT_FRAME_BYTES - REMOTE_HEADER_BYTES - REMOTE_SUM_BYTES;

// --- Protocol::replyLen beside a number of bytes ---

const int REPLY_LEN_ANY = -1; // is not checked
const int REPLY_LEN_NONE = 0; // no reply is expected
