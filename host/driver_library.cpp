#include "host/driver_library.h"

#include <dlfcn.h>

#include <stdexcept>

namespace
{

void *load(const std::string &path, int flags)
{
    void *const handle = dlopen(path.c_str(), RTLD_NOW | flags);
    if (!handle)
        throw std::runtime_error("cannot load the driver: " + std::string(dlerror()));
    return handle;
}

} // namespace

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
        throw std::runtime_error(m_path + " is not the driver: it does not export " + name);
    return address;
}
