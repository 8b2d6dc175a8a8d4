// The parts of every frame and their sizes in bytes. A header is the part before the data.
#pragma once

#include "driver/units.h"
#include "velko_modbus_rtu.h"

// --- Modbus RTU ---

const int CRC_BYTES = 2;

const int READ_HOLDING_REGISTERS = 0x03;
const int READ_INPUT_REGISTERS = 0x04;
const int WRITE_MULTIPLE_REGISTERS = 0x10;

/// Read request: station, function, first register, number of registers, CRC.
const int READ_REQUEST_BYTES = 1 + 1 + 2 + 2 + CRC_BYTES;

/// Header of a read response: station, function, byte count.
const int READ_REPLY_HEADER_BYTES = 1 + 1 + 1;

/// Header of a function 16 request: station, function, first register, number of registers, byte
/// count.
const int WRITE_HEADER_BYTES = 1 + 1 + 2 + 2 + 1;

/// Function 16 response: station, function, first register, number of registers, CRC.
const int WRITE_REPLY_BYTES = 1 + 1 + 2 + 2 + CRC_BYTES;

/// Maximum number of registers in one function 16 frame of at most LIMIT_FRAME_BYTES.
const int WRITE_MOST_REGISTERS =
    (LIMIT_FRAME_BYTES - WRITE_HEADER_BYTES - CRC_BYTES) / REGISTER_BYTES;

/// No slave responds to a request to this station.
const int BROADCAST_STATION = 0;

// --- Remote mode ---

/// Header: length, ownerId, rwFlag, areaNo, station, varKind, addr, count, rmwMark, remoteArg.
const int REMOTE_HEADER_BYTES = 1 + 1 + 1 + 1 + 1 + 2 + 4 + 2 + 4 + 4;
const int REMOTE_SUM_BYTES = 1;
const int REMOTE_MOST_VALUE_BYTES = LIMIT_FRAME_BYTES - REMOTE_HEADER_BYTES - REMOTE_SUM_BYTES;

// --- Values of Protocol::replyLen that are not a number of bytes ---

const int REPLY_LEN_ANY = -1; // the length is not checked
const int REPLY_LEN_NONE = 0; // no response is expected
