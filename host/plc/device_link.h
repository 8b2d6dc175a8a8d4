// A symbolic link to the simulated device, so that its name can be chosen.
#pragma once

#include <filesystem>
#include <string>

namespace velko
{

/// Creates the link and removes it in its destructor, unless the link points elsewhere by then.
class DeviceLink
{
public:
    /// Replaces a symbolic link of this name. Does nothing if `path` is empty. Throws
    /// std::runtime_error.
    DeviceLink(const std::string &path, const std::string &device);
    ~DeviceLink();
    DeviceLink(const DeviceLink &) = delete;
    DeviceLink &operator=(const DeviceLink &) = delete;

    /// True if nothing or a symbolic link has this path. Anything else must not be replaced.
    static bool isFree(const std::string &path);

private:
    std::filesystem::path m_path;
    std::filesystem::path m_device;
};

} // namespace velko
