// A symbolic link to the simulated device, so that its name can be chosen.
#pragma once

#include <filesystem>
#include <string>

namespace velko
{

/// Creates the link and removes it at its destruction, unless it points elsewhere by then.
class DeviceLink
{
public:
    /// Replaces a symbolic link of this name. Does nothing if `path` is empty. Throws
    /// std::runtime_error.
    DeviceLink(const std::string &path, const std::string &device);
    ~DeviceLink();
    DeviceLink(const DeviceLink &) = delete;
    DeviceLink &operator=(const DeviceLink &) = delete;

    /// False if the path is something other than a symbolic link, which must not be replaced.
    static bool isFree(const std::string &path);

private:
    std::filesystem::path m_path;
    std::filesystem::path m_device;
};

} // namespace velko
