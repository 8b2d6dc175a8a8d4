#include "store/data_store.h"

#include "bytes/wire_order.h"
#include "driver/modbus_rtu_master.h"
#include "driver/units.h"

#include <cstring>

namespace
{

// The elements of a run that lie within [0, limit), counted from the start of the run.
struct Inside {
    qint64 first;
    qint64 last; // exclusive

    Inside(qint64 start, qint64 length, qint64 limit)
        : first(qMax<qint64>(0, -start)),
          last(qMin(length, limit - start))
    {
    }

    bool isEmpty() const { return first >= last; }
    int size() const { return static_cast<int>(last - first); }
};

// `bytes` is 1 to LIMIT_IMAGE_BYTES.
void growImage(AreaImage &image, qint64 bytes)
{
    const int oldSize = image.size();
    const int newSize = static_cast<int>(bytes);
    if (newSize <= oldSize)
        return;
    image.resize(newSize);
    std::memset(image.data() + oldSize, 0, static_cast<size_t>(newSize - oldSize));
}

char byteOrZero(const QByteArray &bytes, qint64 index)
{
    return index < bytes.size() ? bytes.at(static_cast<int>(index)) : '\0';
}

} // namespace

AreaImage &areaImage(int station, int areaCode)
{
    return DataStorage[station][areaCode];
}

unsigned char readByte(const AreaImage &image, qint64 index)
{
    if (index < 0 || index >= image.size())
        return 0;
    return static_cast<unsigned char>(image.at(static_cast<int>(index)));
}

void readBytes(const AreaImage &image, qint64 index, int length, char *to)
{
    const Inside run(index, length, image.size());
    if (!run.isEmpty())
        std::memcpy(to + run.first, image.constData() + (index + run.first),
                    static_cast<size_t>(run.size()));
}

void writeRegisters(AreaImage &image, qint64 first, const char *wire, int registers)
{
    const Inside run(first, registers, LIMIT_IMAGE_BYTES / REGISTER_BYTES);
    if (run.isEmpty())
        return;
    growImage(image, REGISTER_BYTES * (first + run.last));
    swapRegisters(wire + REGISTER_BYTES * run.first, run.size(),
                  image.data() + REGISTER_BYTES * (first + run.first));
}

void writeBytes(AreaImage &image, qint64 index, qint64 length, const QByteArray &bytes)
{
    const Inside run(index, length, LIMIT_IMAGE_BYTES);
    if (run.isEmpty())
        return;
    growImage(image, index + run.last);
    char *const to = image.data() + (index + run.first); // `index` itself may be negative
    std::memset(to, 0, static_cast<size_t>(run.size()));
    const qint64 given = qMin<qint64>(bytes.size(), run.last) - run.first;
    if (given > 0)
        std::memcpy(to, bytes.constData() + run.first, static_cast<size_t>(given));
}

void writeBits(AreaImage &image, qint64 bit, qint64 length, const QByteArray &bytes)
{
    const Inside run(bit, length, static_cast<qint64>(LIMIT_IMAGE_BYTES) * BYTE_BITS);
    if (run.isEmpty())
        return;
    growImage(image, (bit + run.last - 1) / BYTE_BITS + 1);
    char *const to = image.data();
    for (qint64 i = run.first; i < run.last; ++i) {
        char &byte = to[(bit + i) / BYTE_BITS];
        const int mask = 1 << (bit + i) % BYTE_BITS;
        byte = static_cast<char>(byteOrZero(bytes, i) != 0 ? byte | mask : byte & ~mask);
    }
}
