// How a line is run, for the sub-commands without a file. Letters and meanings are mbpoll's where it
// has the same option.
#pragma once

#include "host/core/links/link.h"

#include <CLI/CLI.hpp>

namespace velko
{

class LineOptions
{
public:
    /// The device is the first positional argument.
    explicit LineOptions(CLI::App &options);

    /// A link with one line, and no variables yet.
    Link link() const;

    int station() const { return m_station; }

private:
    std::string m_device;
    std::string m_parity = "even";
    std::string m_timeout = "1";
    std::string m_guard;
    bool m_isRtsOnSend = false;
    bool m_isRtsAfterSend = false;
    int m_station = 1;
    Link m_link;
};

} // namespace velko
