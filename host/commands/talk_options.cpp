#include "host/commands/talk_options.h"

#include "host/commands/capture_files.h"

#include <QCoreApplication>

#include <filesystem>
#include <stdexcept>

namespace velko
{

std::string driverFile()
{
    namespace fs = std::filesystem;
    const fs::path folder(QCoreApplication::applicationDirPath().toStdString());
    for (const fs::path &place : {folder, folder.parent_path()}) {
        if (fs::exists(place / DRIVER_NAME))
            return (place / DRIVER_NAME).string();
    }
    return (folder / LIBRARIES_FROM_PROGRAMS / DRIVER_NAME).lexically_normal().string();
}

TapOptions::TapOptions(CLI::App &options)
{
    options.add_flag("--trace", m_isTraced,
                     "print each frame in hexadecimal on standard error: -> sent, <- received, xx "
                     "dropped, == result");
    options
        .add_option("--pcap", m_captureFile,
                    "write each frame to a capture file for tshark, link type 147")
        ->type_name("FILE");
}

// The format has no room for the name of a link, so that each link needs a file of its own.
void TapOptions::begin(const std::vector<std::string> &links)
{
    if (m_isTraced)
        m_trace = std::make_unique<TraceTap>(stderr);
    if (m_captureFile.empty())
        return;
    if (m_captureFile == "-") // libpcap would write to standard output
        throw std::invalid_argument("--pcap -: name a file; standard output is for values");
    const std::vector<std::string> files = captureFiles(m_captureFile, links);
    for (size_t i = 0; i < links.size(); ++i)
        m_captures[links[i]] = std::make_unique<CaptureTap>(files[i]);
}

std::vector<LineTap *> TapOptions::taps(const std::string &link) const
{
    std::vector<LineTap *> taps;
    if (m_trace)
        taps.push_back(m_trace.get());
    const auto capture = m_captures.find(link);
    if (capture != m_captures.end())
        taps.push_back(capture->second.get());
    return taps;
}

void TapOptions::finish()
{
    for (const auto &[link, capture] : m_captures)
        capture->finish();
}

TalkOptions::TalkOptions(CLI::App &options) : TapOptions(options), m_library(driverFile())
{
    options.add_option("--library", m_library, "driver library file")
        ->type_name("FILE")
        ->capture_default_str();
}

} // namespace velko
