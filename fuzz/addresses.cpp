// Passes address texts and variable items of any kind, and checks the requests made from them.
#include "driver/modbus_rtu_master.h"
#include "fuzz/common.h"

#include <algorithm>
#include <limits>

namespace
{

void checkNumber(int kind, int number, int bit)
{
    const int factors[] = {8, 1, 2, 4};
    const bool isBit = kind < KIND_INPUT_BYTE;
    const qint64 offset = static_cast<qint64>(number) * factors[kind / 3] + (isBit ? bit : 0);
    const QString end = isBit ? QLatin1Char('.') + QString::number(bit) : QString();
    const int found = PLCAddressChangeIntef(kind, QString::number(number) + end);
    const bool isValid = offset >= 0 && offset <= std::numeric_limits<int>::max();
    assert(isValid ? found == offset : found < 0);
}

// `requests` are sorted by register.
void checkItem(const VAR_ITEM &item, const QList<RW_VAR> &requests)
{
    const int offset = PLCAddressChangeIntef(item.kind, item.addrText);
    const auto wanted = registersOf(item.kind, offset, item.length);
    if (offset < 0 || item.length < 1 || wanted.second - wanted.first > LIMIT_REGISTERS)
        return;
    qint64 next = wanted.first;
    for (const RW_VAR &request : requests) {
        if (request.varKind == AREA_INPUT + item.kind % 3 && request.addr <= next)
            next = qMax<qint64>(next, static_cast<qint64>(request.addr) + request.count);
    }
    assert(next >= wanted.second);
}

bool startsLower(const RW_VAR &left, const RW_VAR &right)
{
    return left.addr < right.addr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    Input input(bytes, size);
    checkNumber(input.below(KIND_COUNT), input.number(-9, 9), input.number(-9, 99));
    const QList<VAR_ITEM> items = input.items();
    QList<RW_VAR> &list = PLC_driver.readList;
    assert(ReCreatReadVarList(&items) == list.size());
    const ComInfo *const info = PLC_driver.comInfo;
    if (!info || info->defaultStation == 0) {
        assert(list.isEmpty());
        return 0;
    }
    for (int i = 0; i < list.size(); ++i) {
        assert(list.at(i).count >= 1 && list.at(i).count <= qMax(info->maxRegs, 1));
        assert(i == 0 || list.at(i - 1).varKind <= list.at(i).varKind);
    }
    std::stable_sort(list.begin(), list.end(), startsLower);
    for (const VAR_ITEM &item : items)
        checkItem(item, list);
    return 0;
}
