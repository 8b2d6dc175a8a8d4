#include "host/plc/descriptors.h"

#include "host/plc/plc_error.h"

#include <sys/socket.h>
#include <unistd.h>

namespace velko
{

Descriptor::~Descriptor()
{
    ::close(m_fd);
}

SocketPair::SocketPair()
{
    const int type = SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK;
    if (::socketpair(AF_UNIX, type, 0, m_ends.data()) != 0)
        failPlcWithErrno("cannot create a pair of sockets");
}

SocketPair::~SocketPair()
{
    ::close(m_ends[0]);
    ::close(m_ends[1]);
}

} // namespace velko
