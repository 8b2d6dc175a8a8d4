// Passes records and values of any content, in every mode of the queues and of the store.
#include "driver/modbus_rtu_master.h"
#include "fuzz/common.h"

namespace
{

// Returns the bytes that a read must deliver after the value was written.
QByteArray delivered(int kind, qint64 offset, int length, const QByteArray &value)
{
    const int width = kind / 3;
    const int sizes[] = {length, length, 2 * length, 4 * ((length + 1) / 2)};
    const qint64 room = (width == 0 ? 8LL : 1LL) * LIMIT_IMAGE_BYTES - offset;
    QByteArray bytes = value.left(static_cast<int>(qBound<qint64>(0, room, sizes[width])));
    for (int i = 0; width == 0 && i < bytes.size(); ++i)
        bytes[i] = bytes.at(i) != 0 ? 1 : 0;
    return bytes.leftJustified(width == 1 ? 2 * length : sizes[width], '\0');
}

void setAndGet(Input &input)
{
    const ComInfo *const info = PLC_driver.comInfo;
    const bool toDevice = info && info->commMode == COMM_DEVICE;
    const int kind = input.number(0, KIND_COUNT - 1);
    const QString text = input.address(kind);
    const int length = input.length(kind);
    const QByteArray value = input.bytes();
    const int given = input.number(0, 3);
    const int station = info && info->perVarStation == 0 ? info->defaultStation : given;
    const int offset = PLCAddressChangeIntef(kind, text);
    const auto covered = registersOf(kind, offset, length);
    const bool isRefused = offset < 0 || covered.second - covered.first > LIMIT_REGISTERS;

    const int before = PLC_driver.writeList.size();
    const int result = SetRegisterData(text, kind, text, given, &value, length, 1, 2);
    const int queued = PLC_driver.writeList.size();
    const bool isStored = info && !isRefused && !toDevice;
    assert(isStored ? result == 1 : result == 0 || (toDevice && !isRefused && result == queued));
    assert(toDevice && !isRefused ? queued <= qMax<int>(before, LIMIT_QUEUE_ENTRIES)
                                  : queued == before);

    QByteArray output("untouched");
    assert(GetRegisterData(0, kind, text, station, &output, length) == (isRefused ? 0 : 1));
    const QByteArray expected = isRefused    ? QByteArray("untouched")
                                : length < 1 ? QByteArray()
                                             : delivered(kind, offset, length, value);
    assert(output.size() == expected.size());
    assert(output == expected || !(isRefused || isStored));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    Input input(bytes, size);
    while (input.isLeft()) {
        const int step = input.below(16);
        if (step < 6)
            setAndGet(input);
        else if (step < 10)
            queue(input);
        else if (step < 14)
            exchange(input);
        else if (step == 14)
            EnCommStation(input.number(0, 3), input.below(3));
        else
            input.setComInfo();
        for (const auto &areas : qAsConst(DataStorage)) {
            for (const AreaImage &image : areas)
                assert(image.size() <= LIMIT_IMAGE_BYTES);
        }
    }
    return 0;
}
