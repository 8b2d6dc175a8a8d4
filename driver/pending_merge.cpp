#include "driver/pending_merge.h"

#include "driver/units.h"
#include "driver/variable_kinds.h"

namespace
{

int withBit(int registerValue, const PendingMerge &merge)
{
    const int bit = 1 << (merge.addr & (REGISTER_BITS - 1));
    return merge.value != 0 ? registerValue | bit : registerValue & ~bit;
}

// An even byte offset is the low byte of its register, an odd one the high byte.
int withByte(int registerValue, const PendingMerge &merge)
{
    return (merge.addr & 1) != 0 ? (registerValue & 0x00FF) | merge.value << BYTE_BITS
                                 : (registerValue & 0xFF00) | merge.value;
}

} // namespace

PendingMerge mergeOf(const RW_VAR &write)
{
    PendingMerge merge;
    merge.active = true;
    merge.varKind = write.varKind;
    merge.addr = write.addr;
    merge.value = write.value.isEmpty() ? 0 : static_cast<unsigned char>(write.value.at(0));
    return merge;
}

int mergedRegister(int registerValue, const PendingMerge &merge)
{
    return widthOf(merge.varKind) == WIDTH_BIT ? withBit(registerValue, merge)
                                               : withByte(registerValue, merge);
}
