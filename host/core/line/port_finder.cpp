#include "host/core/line/port_finder.h"

#include <QFileInfo>
#include <QSerialPortInfo>

#include <glob.h>

#include <memory>

namespace velko
{

namespace
{

std::string firstMatch(const std::string &pattern)
{
    glob_t found = {};
    const int result = ::glob(pattern.c_str(), 0, nullptr, &found);
    const std::unique_ptr<glob_t, decltype(&::globfree)> cleanUp(&found, ::globfree);
    return result == 0 && found.gl_pathc > 0 ? found.gl_pathv[0] : std::string();
}

// The device itself, not a link to it: the system's list of ports contains no links.
std::string target(const std::string &device)
{
    return QFileInfo(QString::fromStdString(device)).canonicalFilePath().toStdString();
}

AdapterIdentity identityOf(const QSerialPortInfo &info)
{
    return {info.serialNumber().toStdString(), info.vendorIdentifier(), info.productIdentifier()};
}

bool isSame(const AdapterIdentity &one, const AdapterIdentity &other)
{
    return !one.serialNumber.empty() && one.serialNumber == other.serialNumber
           && one.vendor == other.vendor && one.product == other.product;
}

} // namespace

AdapterIdentity identityOf(const std::string &device)
{
    const std::string path = target(device);
    for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts())
        if (info.systemLocation().toStdString() == path)
            return identityOf(info);
    return {};
}

std::string findPort(const std::vector<std::string> &devices, const AdapterIdentity &lastSeen)
{
    for (const std::string &name : devices) {
        // A name may contain characters that are special in patterns.
        const std::string device =
            QFileInfo::exists(QString::fromStdString(name)) ? name : firstMatch(name);
        if (!device.empty())
            return target(device);
    }
    // The ports of one adapter have the same serial number, which then identifies none of them.
    std::vector<std::string> found;
    for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts())
        if (isSame(identityOf(info), lastSeen))
            found.push_back(info.systemLocation().toStdString());
    return found.size() == 1 ? found.front() : std::string();
}

} // namespace velko
