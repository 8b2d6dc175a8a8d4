// Options of every sub-command that uses a line.
#pragma once

#include "host/core/line/capture_tap.h"
#include "host/core/line/line_tap.h"
#include "host/views/trace_tap.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace velko
{

/// The driver library file: beside the program, one folder up (in a build tree) or, if installed,
/// in the folder of libraries.
std::string driverFile();

/// --trace and --pcap.
class TapOptions
{
public:
    explicit TapOptions(CLI::App &options);

    bool isTraced() const { return m_isTraced; }

    /// Begins the trace and the capture file. Throws std::runtime_error.
    void begin();

    /// The taps that the options select; valid after begin, as long as this object.
    std::vector<LineTap *> taps() const;

    /// Throws std::runtime_error if the capture file is not complete.
    void finish();

private:
    bool m_isTraced = false;
    std::string m_captureFile;
    std::unique_ptr<TraceTap> m_trace;
    std::unique_ptr<CaptureTap> m_capture;
};

/// Adds --library.
class TalkOptions : public TapOptions
{
public:
    explicit TalkOptions(CLI::App &options);

    const std::string &library() const { return m_library; }

private:
    std::string m_library;
};

} // namespace velko
