#include "host/plc/device_link.h"

#include <stdexcept>
#include <system_error>

namespace velko
{

namespace fs = std::filesystem;

DeviceLink::DeviceLink(const std::string &path, const std::string &device)
    : m_path(path),
      m_device(device)
{
    if (m_path.empty())
        return;
    std::error_code error;
    if (fs::is_symlink(fs::symlink_status(m_path, error)))
        fs::remove(m_path, error);
    fs::create_symlink(m_device, m_path, error);
    if (error)
        throw std::runtime_error("cannot create the link \"" + path + "\": " + error.message());
}

DeviceLink::~DeviceLink()
{
    std::error_code ignored;
    if (!m_path.empty() && fs::read_symlink(m_path, ignored) == m_device)
        fs::remove(m_path, ignored);
}

bool DeviceLink::isFree(const std::string &path)
{
    std::error_code ignored;
    const fs::file_status status = fs::symlink_status(path, ignored);
    return !fs::exists(status) || fs::is_symlink(status);
}

} // namespace velko
