#include "host/plc/pseudo_terminal.h"

#include "host/plc/plc_error.h"

#include <fcntl.h>
#include <termios.h>

#include <array>
#include <cstdlib>

namespace velko
{

namespace
{

const size_t LONGEST_PATH = 128;

int openMaster()
{
    const int fd = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        failPlcWithErrno("cannot create a pseudo-terminal");
    return fd;
}

std::string unlockedSlave(int master)
{
    std::array<char, LONGEST_PATH> path{};
    if (::grantpt(master) != 0 || ::unlockpt(master) != 0
        || ::ptsname_r(master, path.data(), path.size()) != 0)
        failPlcWithErrno("cannot unlock the pseudo-terminal");
    return path.data();
}

int openSlave(const std::string &device)
{
    const int fd = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        failPlcWithErrno("cannot open the pseudo-terminal");
    return fd;
}

// A terminal that is not raw echoes and translates the bytes.
void makeRaw(int slave)
{
    termios settings{};
    if (::tcgetattr(slave, &settings) != 0)
        failPlcWithErrno("cannot read the settings of the pseudo-terminal");
    ::cfmakeraw(&settings);
    if (::tcsetattr(slave, TCSANOW, &settings) != 0)
        failPlcWithErrno("cannot set the pseudo-terminal to raw mode");
}

} // namespace

PseudoTerminal::PseudoTerminal()
    : m_master(openMaster()),
      m_device(unlockedSlave(m_master.get())),
      m_slave(openSlave(m_device))
{
    makeRaw(m_slave.get());
}

} // namespace velko
