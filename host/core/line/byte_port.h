// An open port: bytes in both directions.
#pragma once

#include "host/core/line/line_settings.h"
#include "host/core/line/port_finder.h"

#include <QByteArray>

#include <functional>
#include <memory>
#include <string>

namespace velko
{

/// The thread that opens the port uses it.
class BytePort
{
public:
    virtual ~BytePort() = default;

    /// The device that is open.
    virtual const std::string &device() const = 0;

    /// Sends the bytes. Returns when all of them were accepted. Throws PortError.
    virtual void write(const QByteArray &bytes) = 0;

    /// Returns the bytes received so far, or the first ones within `timeout` milliseconds; empty if
    /// there are none. Throws PortError.
    virtual QByteArray read(int timeout) = 0;
};

/// Opens the port; `lastSeen` as in findPort. Throws PortError with the device, the reason and
/// advice.
using PortOpener = std::function<std::unique_ptr<BytePort>(const LineSettings &settings,
                                                           const AdapterIdentity &lastSeen)>;

} // namespace velko
