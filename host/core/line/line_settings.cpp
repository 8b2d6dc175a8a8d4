#include "host/core/line/line_settings.h"

#include <tuple>

namespace velko
{

namespace
{

auto fieldsOf(const LineSettings &settings)
{
    return std::tie(settings.devices, settings.baudRate, settings.parity, settings.stopBits,
                    settings.responseTimeout, settings.interCharacterTimeout, settings.guardTime,
                    settings.minFrameGap, settings.rs485, settings.echo);
}

} // namespace

bool LineSettings::operator==(const LineSettings &other) const
{
    return fieldsOf(*this) == fieldsOf(other);
}

} // namespace velko
