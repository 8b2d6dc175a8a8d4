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

/// Returns the path of the driver library file: in the folder of the program, in its parent folder
/// (in a build tree) or, if installed, in the folder of libraries.
std::string driverFile();

/// --trace and --pcap.
class TapOptions
{
public:
    explicit TapOptions(CLI::App &options);

    /// True if --trace was given.
    bool isTraced() const { return m_isTraced; }

    /// Starts the trace and the capture file. Throws std::runtime_error.
    void begin();

    /// Returns the taps that the options select, owned by this object. Call it after begin().
    std::vector<LineTap *> taps() const;

    /// Completes the capture file. Throws std::runtime_error if it is not complete.
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

    /// Path of the driver library file.
    const std::string &library() const { return m_library; }

private:
    std::string m_library;
};

} // namespace velko
