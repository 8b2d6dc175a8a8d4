// The driver as a panel uses it: a file that is loaded at run time.
#pragma once

#include "velko_modbus_rtu.h"

#include <string>

namespace velko
{

/// Throws std::runtime_error if the file cannot be the driver library file: it is missing, it is
/// truncated, or its path has no "/".
void checkDriverFile(const std::string &path);

/// A loaded copy of the driver and its entry points. One copy drives one serial line.
class DriverLibrary
{
public:
    /// Loads the file. `path` must contain a "/", because the loader looks for a bare name among
    /// the libraries that are already loaded. `dlopenFlags` are added to RTLD_NOW. Throws
    /// std::runtime_error with the reason.
    explicit DriverLibrary(const std::string &path, int dlopenFlags = 0);
    ~DriverLibrary();
    DriverLibrary(const DriverLibrary &) = delete;
    DriverLibrary &operator=(const DriverLibrary &) = delete;

    /// Returns the address of an exported name, never null. Throws std::runtime_error if the file
    /// does not export it.
    void *symbol(const char *name) const;

private:
    template <typename Function> Function resolve(const char *name) const
    {
        return reinterpret_cast<Function>(symbol(name));
    }

    std::string m_path;
    void *m_handle;

public:
    // Entry points. velko_modbus_rtu.h documents each of them and the threads that may call it.
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
