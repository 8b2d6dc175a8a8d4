// Bytes in hexadecimal.
#pragma once

#include <QByteArray>

#include <string>

namespace velko
{

/// "01 03 02 5A A5 42 9F"
std::string hexText(const QByteArray &bytes);

} // namespace velko
