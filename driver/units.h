// Sizes of Modbus registers and of their parts.
#pragma once

const int BYTE_BITS = 8;
const int REGISTER_BYTES = 2;
const int REGISTER_BITS = REGISTER_BYTES * BYTE_BITS;
const int DWORD_REGISTERS = 2;
const int DWORD_BYTES = DWORD_REGISTERS * REGISTER_BYTES;
