#include "host/commands/talk_options.h"

#include <QCoreApplication>

#include <filesystem>

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

void TapOptions::begin()
{
    if (m_isTraced)
        m_trace = std::make_unique<TraceTap>(stderr);
    if (!m_captureFile.empty())
        m_capture = std::make_unique<CaptureTap>(m_captureFile);
}

std::vector<LineTap *> TapOptions::taps() const
{
    std::vector<LineTap *> taps;
    if (m_trace)
        taps.push_back(m_trace.get());
    if (m_capture)
        taps.push_back(m_capture.get());
    return taps;
}

void TapOptions::finish()
{
    if (m_capture)
        m_capture->finish();
}

TalkOptions::TalkOptions(CLI::App &options) : TapOptions(options), m_library(driverFile())
{
    options.add_option("--library", m_library, "driver library file")
        ->type_name("FILE")
        ->capture_default_str();
}

} // namespace velko
