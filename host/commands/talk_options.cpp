#include "host/commands/talk_options.h"

#include <QCoreApplication>

#include <filesystem>

namespace
{

const char *const LIBRARY_NAME = "libVelko_Modbus_RTU.so.1";

std::string checkNumber(const std::string &text, int lowest, int highest)
{
    const bool isDecimal = !text.empty() && text.size() <= 9
                           && text.find_first_not_of("0123456789") == std::string::npos
                           && (text == "0" || text[0] != '0');
    if (isDecimal && std::stoi(text) >= lowest && std::stoi(text) <= highest)
        return std::string();
    return "\"" + text + "\" is not a number from " + std::to_string(lowest) + " to "
           + std::to_string(highest) + " without leading zeros";
}

std::string checkSeconds(const std::string &text, double lowest, double highest)
{
    const bool isDecimal = !text.empty() && text.size() <= 12
                           && text.find_first_not_of("0123456789.") == std::string::npos
                           && text.find('.') == text.rfind('.') && text != ".";
    if (isDecimal && std::stod(text) >= lowest && std::stod(text) <= highest)
        return std::string();
    return "\"" + text + "\" is not a number of seconds from " + CLI::detail::to_string(lowest)
           + " to " + CLI::detail::to_string(highest);
}

} // namespace

std::string builtLibrary()
{
    namespace fs = std::filesystem;
    const fs::path folder(QCoreApplication::applicationDirPath().toStdString());
    const fs::path beside = folder / LIBRARY_NAME;
    return fs::exists(beside) ? beside.string() : (folder.parent_path() / LIBRARY_NAME).string();
}

CLI::Validator numberFrom(int lowest, int highest)
{
    return {[=](std::string &text) { return checkNumber(text, lowest, highest); },
            std::to_string(lowest) + ".." + std::to_string(highest)};
}

CLI::Validator secondsFrom(double lowest, double highest)
{
    return {[=](std::string &text) { return checkSeconds(text, lowest, highest); },
            CLI::detail::to_string(lowest) + ".." + CLI::detail::to_string(highest)};
}

TalkOptions::TalkOptions(CLI::App &options) : m_library(builtLibrary())
{
    options.add_flag("--trace", m_isTraced,
                     "print each frame in hexadecimal on standard error: -> sent, <- received, xx "
                     "dropped, == what became of it");
    options.add_option("--pcap", m_captureFile,
                       "write each frame to this capture file, link type 147, for tshark");
    options.add_option("--library", m_library, "the driver's file")->capture_default_str();
}

void TalkOptions::begin()
{
    if (m_isTraced)
        m_trace = std::make_unique<TraceTap>(stderr);
    if (!m_captureFile.empty())
        m_capture = std::make_unique<CaptureTap>(m_captureFile);
}

std::vector<LineTap *> TalkOptions::taps() const
{
    std::vector<LineTap *> taps;
    if (m_trace)
        taps.push_back(m_trace.get());
    if (m_capture)
        taps.push_back(m_capture.get());
    return taps;
}

void TalkOptions::finish()
{
    if (m_capture)
        m_capture->finish();
}
