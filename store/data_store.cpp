#include "store/data_store.h"

#include "driver/modbus_rtu_master.h"

#include <cstring>

AreaImage &areaImage(int station, int areaCode)
{
    return DataStorage[station][areaCode];
}

void growImage(AreaImage &image, qint64 bytes)
{
    const int oldSize = image.size();
    const int newSize = static_cast<int>(qMin<qint64>(bytes, LIMIT_IMAGE_BYTES));
    if (newSize <= oldSize)
        return;
    image.resize(newSize);
    std::memset(image.data() + oldSize, 0, static_cast<size_t>(newSize - oldSize));
}

unsigned char readByte(const AreaImage &image, qint64 index)
{
    if (index < 0 || index >= image.size())
        return 0;
    return static_cast<unsigned char>(image.at(static_cast<int>(index)));
}

void writeByte(AreaImage &image, qint64 index, unsigned char byte)
{
    if (index < 0 || index >= LIMIT_IMAGE_BYTES)
        return;
    growImage(image, index + 1);
    image.data()[index] = static_cast<char>(byte);
}
