// A pseudo-terminal in raw mode.
#pragma once

#include "host/plc/descriptors.h"

#include <string>

namespace velko
{

/// Owns both ends. While it exists, a program that opens and closes the device does not hang up the
/// line. After its destruction, a read of that program returns an end of file or EIO.
class PseudoTerminal
{
public:
    /// Throws std::runtime_error.
    PseudoTerminal();

    /// The descriptor of the simulated PLC's end, owned by this object. Non-blocking.
    int master() const { return m_master.get(); }

    /// The path that a Modbus master opens.
    const std::string &device() const { return m_device; }

private:
    Descriptor m_master;
    std::string m_device;
    Descriptor m_slave;
};

} // namespace velko
