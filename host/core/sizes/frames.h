// The parts of Modbus RTU frames, in bytes. "Header" is what precedes the data.
#pragma once

namespace velko
{

const int CRC_BYTES = 2;
const int LONGEST_FRAME = 256;

const int EXCEPTION_FLAG = 0x80; // in the function code of an exception response
/// Station, function, code, CRC.
const int EXCEPTION_BYTES = 1 + 1 + 1 + CRC_BYTES;

/// A read request, and the response to a write: station, function, register address, count or value,
/// CRC.
const int SHORT_FRAME_BYTES = 1 + 1 + 2 + 2 + CRC_BYTES;

/// Header of a read response: station, function, byte count.
const int READ_HEADER_BYTES = 1 + 1 + 1;
const int READ_OVERHEAD_BYTES = READ_HEADER_BYTES + CRC_BYTES;

/// Header of a request that writes several values: station, function, register address, count, byte
/// count.
const int WRITE_HEADER_BYTES = 1 + 1 + 2 + 2 + 1;

// Function codes.
const int READ_COILS = 1;
const int READ_HOLDING_REGISTERS = 3;
const int READ_INPUT_REGISTERS = 4; // 1 to 4 are the reads
const int WRITE_SINGLE_COIL = 5;
const int WRITE_SINGLE_REGISTER = 6;
const int WRITE_MULTIPLE_COILS = 15;
const int WRITE_MULTIPLE_REGISTERS = 16;

} // namespace velko
