#include "driver/modbus_rtu_master.h"

// Both are defined in this file, in this order. Objects of one file are constructed in the order of
// their definitions and destroyed in the reverse order, whatever the link order is.
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
