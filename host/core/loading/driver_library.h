// The driver as a panel uses it: a file that is loaded at run time.
#pragma once

#include "velko_modbus_rtu.h"

#include <string>

namespace velko
{

/// Throws std::runtime_error for a file that cannot be the driver: it is missing or truncated, or
/// its path has no "/".
void checkDriverFile(const std::string &path);

/// A loaded copy of the driver and its entry points. One copy drives one serial line.
class DriverLibrary
{
public:
    /// Loads the file. `path` must contain a "/": the loader looks up a bare name among the
    /// libraries that are already loaded. Throws std::runtime_error with the reason.
    explicit DriverLibrary(const std::string &path, int dlopenFlags = 0);
    ~DriverLibrary();
    DriverLibrary(const DriverLibrary &) = delete;
    DriverLibrary &operator=(const DriverLibrary &) = delete;

    /// Address of any exported name. Throws std::runtime_error if there is none.
    void *symbol(const char *name) const;

private:
    template <typename Function> Function resolve(const char *name) const
    {
        return reinterpret_cast<Function>(symbol(name));
    }

    std::string m_path;
    void *m_handle;

public:
    // Each is documented in velko_modbus_rtu.h.
    const decltype(&::SetComInfo) SetComInfo;
    const decltype(&::RegistCallBackFuncIntf) RegistCallBackFuncIntf;
    const decltype(&::FlashLocalRegister) FlashLocalRegister;
    const decltype(&::QueryFinishFlag) QueryFinishFlag;
    const decltype(&::EnCommStation) EnCommStation;
    const decltype(&::ComCommunication) ComCommunication;
    const decltype(&::DataCom) DataCom;
    const decltype(&::PLCAddressChangeIntef) PLCAddressChangeIntef;
    const decltype(&::AddListReadVar) AddListReadVar;
    const decltype(&::ReCreatReadVarList) ReCreatReadVarList;
    const decltype(&::AddListWriteVar) AddListWriteVar;
    const decltype(&::AddListOnceReadVar) AddListOnceReadVar;
    const decltype(&::GetRegisterData) GetRegisterData;
    const decltype(&::SetRegisterData) SetRegisterData;
    const decltype(&::customMessageHandler) customMessageHandler;
    const decltype(&::WhetherGroup) WhetherGroup;
};

} // namespace velko
