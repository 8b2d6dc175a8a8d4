// The sizes that follow from Modbus registers, one name for each.
#pragma once

const int BYTE_BITS = 8;
const int REGISTER_BYTES = 2;
const int REGISTER_BITS = REGISTER_BYTES * BYTE_BITS;
const int DWORD_REGISTERS = 2;
const int DWORD_BYTES = DWORD_REGISTERS * REGISTER_BYTES;
