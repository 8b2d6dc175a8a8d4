// Sizes of the units that variables are made of.
#pragma once

namespace velko
{

const int BYTE_BITS = 8;
const int REGISTER_BYTES = 2;
const int REGISTER_BITS = REGISTER_BYTES * BYTE_BITS;
const int DWORD_REGISTERS = 2;
const int DWORD_BITS = DWORD_REGISTERS * REGISTER_BITS;

} // namespace velko
