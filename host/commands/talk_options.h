// Options of every sub-command that uses a line.
#pragma once

#include "host/core/line/capture_tap.h"
#include "host/core/line/line_tap.h"
#include "host/views/trace_tap.h"

#include <CLI/CLI.hpp>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace velko
{

/// Returns the path of the driver library file: in the folder of the program, in its parent folder
/// (in a build tree) or, if installed, in the folder of libraries.
std::string driverFile();

/// Name of the line of a command that has only one.
const char *const SINGLE_LINE = "line";

/// --trace and --pcap.
class TapOptions
{
public:
    explicit TapOptions(CLI::App &options);

    /// True if --trace was given.
    bool isTraced() const { return m_isTraced; }

    /// Starts the trace, and one capture file for each of the links. Throws std::invalid_argument
    /// for wrong usage, std::runtime_error if a file cannot be written.
    void begin(const std::vector<std::string> &links = {SINGLE_LINE});

    /// Returns the taps that the options select for one of these links, owned by this object. Call
    /// it after begin().
    std::vector<LineTap *> taps(const std::string &link = SINGLE_LINE) const;

    /// Completes the capture files. Throws std::runtime_error if one of them is not complete.
    void finish();

private:
    bool m_isTraced = false;
    std::string m_captureFile;
    std::unique_ptr<TraceTap> m_trace;
    std::map<std::string, std::unique_ptr<CaptureTap>> m_captures; // by link
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
