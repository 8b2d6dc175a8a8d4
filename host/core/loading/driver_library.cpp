#include "host/core/loading/driver_library.h"

#include <dlfcn.h>

#include <elf.h>
#include <link.h>

#include <cstring>
#include <fstream>
#include <stdexcept>

namespace velko
{

namespace
{

// The loader maps the size that the header gives. With a truncated file it would access pages that
// do not exist, and the process would be killed.
void checkWhole(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    ElfW(Ehdr) header;
    if (!file.read(reinterpret_cast<char *>(&header), sizeof header)
        || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        throw std::runtime_error("cannot load the driver library file " + path
                                 + ": it cannot be read, or is not a shared library");
    file.seekg(0, std::ios::end);
    const auto size = static_cast<unsigned long long>(file.tellg());
    if (size
        < header.e_shoff + static_cast<unsigned long long>(header.e_shnum) * header.e_shentsize)
        throw std::runtime_error("cannot load the driver library file " + path
                                 + ": it is truncated");
}

void *load(const std::string &path, int flags)
{
    checkDriverFile(path);
    void *const handle = dlopen(path.c_str(), RTLD_NOW | flags);
    if (!handle)
        throw std::runtime_error("cannot load the driver library file: " + std::string(dlerror()));
    return handle;
}

} // namespace

void checkDriverFile(const std::string &path)
{
    if (path.find('/') == std::string::npos)
        throw std::runtime_error("cannot load the driver library file \"" + path
                                 + "\": it is not a path. Write ./" + path
                                 + " for a file in this folder.");
    checkWhole(path);
}

DriverLibrary::DriverLibrary(const std::string &path, int dlopenFlags)
    : m_path(path),
      m_handle(load(path, dlopenFlags)),
#define ENTRY(name) name(resolve<decltype(&::name)>(#name))
      ENTRY(SetComInfo),
      ENTRY(RegistCallBackFuncIntf),
      ENTRY(FlashLocalRegister),
      ENTRY(QueryFinishFlag),
      ENTRY(EnCommStation),
      ENTRY(ComCommunication),
      ENTRY(DataCom),
      ENTRY(PLCAddressChangeIntef),
      ENTRY(AddListReadVar),
      ENTRY(ReCreatReadVarList),
      ENTRY(AddListWriteVar),
      ENTRY(AddListOnceReadVar),
      ENTRY(GetRegisterData),
      ENTRY(SetRegisterData),
#undef ENTRY
      customMessageHandler(
          resolve<decltype(&::customMessageHandler)>("_Z20customMessageHandler9QtMsgTypePKc")),
      WhetherGroup(resolve<decltype(&::WhetherGroup)>("_Z12WhetherGroupiiP6RW_VARP5QListIS_E"))
{
}

DriverLibrary::~DriverLibrary()
{
    dlclose(m_handle);
}

void *DriverLibrary::symbol(const char *name) const
{
    void *const address = dlsym(m_handle, name);
    if (!address)
        throw std::runtime_error(m_path + " is not the driver library file: it does not export "
                                 + name);
    return address;
}

} // namespace velko
