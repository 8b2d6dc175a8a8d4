#include "lists/address_model.h"

#include "driver/units.h"
#include "driver/variable_kinds.h"
#include "lists/decimal_number.h"
#include "velko_modbus_rtu.h"

#include <QStringList>

#include <limits>

namespace
{

const int INVALID_ADDRESS = -1;

int withinInt(qint64 offset)
{
    const bool fits =
        offset >= std::numeric_limits<int>::min() && offset <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(offset) : INVALID_ADDRESS;
}

// 64 bits wide because the product may exceed the largest int.
qint64 linear(const QString &text, qint64 perUnit)
{
    return decimalNumber(text) * perUnit;
}

int bitOffset(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() != 2)
        return INVALID_ADDRESS;
    return withinInt(linear(parts.at(0), BYTE_BITS) + decimalNumber(parts.at(1)));
}

qint64 registerCount(WidthClass width, int offset, qint64 length)
{
    switch (width) {
    case WIDTH_BIT:
        return (offset % REGISTER_BITS + length + REGISTER_BITS - 1) / REGISTER_BITS;
    case WIDTH_BYTE:
        return (offset % REGISTER_BYTES + length + REGISTER_BYTES - 1) / REGISTER_BYTES;
    case WIDTH_DWORD:
        return (length + DWORD_REGISTERS - 1) / DWORD_REGISTERS * DWORD_REGISTERS;
    default:
        return length;
    }
}

} // namespace

int StringAddressToInt(int kind, const QString &text)
{
    switch (widthOf(kind)) {
    case WIDTH_BIT:
        return bitOffset(text);
    case WIDTH_BYTE:
        return decimalNumber(text);
    case WIDTH_WORD:
        return withinInt(linear(text, REGISTER_BYTES));
    case WIDTH_DWORD:
        return withinInt(linear(text, DWORD_BYTES));
    default:
        return INVALID_ADDRESS;
    }
}

int PLCAddressChangeIntef(int kind, QString addrText)
{
    return StringAddressToInt(kind, addrText);
}

RegisterRange ToRegisterRange(int kind, int offset, int length)
{
    const WidthClass width = widthOf(kind);
    const qint64 count = registerCount(width, offset, length);
    RegisterRange range;
    range.areaCode = getPlcReg(kind);
    range.firstRegister = width == WIDTH_BIT ? offset / REGISTER_BITS : offset / REGISTER_BYTES;
    range.count = static_cast<int>(qMin<qint64>(count, std::numeric_limits<int>::max()));
    return range;
}

bool passesRegisterLimit(int kind, int offset, int length)
{
    return ToRegisterRange(kind, offset, length).count > LIMIT_REGISTERS;
}
