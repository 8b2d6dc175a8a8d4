#include "host/core/text/hex.h"

namespace velko
{

std::string hexText(const QByteArray &bytes)
{
    return bytes.toHex(' ').toUpper().toStdString();
}

} // namespace velko
