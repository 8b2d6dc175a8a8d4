#include "driver/modbus_rtu_master.h"

// One file defines both, in this order: within a file construction follows definition and
// destruction reverses it, whatever order the files are linked in.
Modbus_RTU_Master PLC_driver;
StationImages DataStorage;

void *LB = nullptr;
void *LW = nullptr;
void *RWI = nullptr;

void SetComInfo(ComInfo *info)
{
    if (info) {
        info->reserved0 = 0;
        info->reserved1 = 0;
    }
    PLC_driver.comInfo = info;
}

void RegistCallBackFuncIntf(RequestDoneFunc onRequestDone, CommFailFunc onCommFail)
{
    PLC_driver.onRequestDone = onRequestDone;
    PLC_driver.onCommFail = onCommFail;
}

void FlashLocalRegister(void *lb, void *lw, void *rwi)
{
    LB = lb;
    LW = lw;
    RWI = rwi;
}

int QueryFinishFlag(void)
{
    return 1;
}
