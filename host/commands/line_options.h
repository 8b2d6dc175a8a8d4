// Line settings for the sub-commands without a file. Options of mbpoll have the same letters and
// meanings here.
#pragma once

#include "host/core/links/link.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace velko
{

class LineOptions
{
public:
    /// Adds the options, and the device as the first positional argument.
    explicit LineOptions(CLI::App &options);

    /// Returns a link without variables.
    Link link() const;

    /// The stations of -a, at least one.
    std::vector<int> stations() const;
    /// The station of -a. Throws std::invalid_argument if it is a list.
    int station() const;

private:
    std::string m_device;
    std::string m_parity = "even";
    std::string m_timeout = "1";
    std::string m_guard;
    bool m_isRtsOnSend = false;
    bool m_isRtsAfterSend = false;
    std::string m_stations = "1";
    Link m_link;
};

} // namespace velko
