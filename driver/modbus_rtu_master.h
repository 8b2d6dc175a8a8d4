// The driver object: the lists, tables and flags that all functions of the library share.
#pragma once

#include "driver/pending_merge.h"
#include "driver/records.h"
#include "velko_modbus_rtu.h"

#include <QList>
#include <QMap>
#include <QMutex>

#include <atomic>

/// The list that holds the request on the line.
enum RequestSource { SOURCE_CYCLIC = 0, SOURCE_WRITE = 1, SOURCE_ONCE = 2, SOURCE_NONE = 100 };

/// Lock order: listMutex first, then one of the others. No thread takes listMutex while it holds
/// another of them. The communication thread is the one that calls ComCommunication and DataCom.
class Modbus_RTU_Master
{
public:
    // Set before the communication loop starts. Not owned; null until SetComInfo is called.
    ComInfo *comInfo = nullptr;

    // Guarded by listMutex. The head of writeList or onceReadList is the request in progress.
    QList<RW_VAR> readList;
    QList<RW_VAR> writeList;
    QList<RW_VAR> onceReadList;
    QList<RW_VAR> spareList;

    // Communication thread only. Frames of at most one request; the head is on the line.
    QList<Protocol> pendingList;
    QList<EXTENDVAR> extendList;

    // Guarded by stationMutex. Disabled stations; the values are always 0.
    QMap<int, int> stationMap;

    // Set before the communication loop starts.
    RequestDoneFunc onRequestDone = nullptr;
    CommFailFunc onCommFail = nullptr;

    QMutex listMutex;
    QMutex storeMutex; // guards DataStorage
    QMutex stationMutex;

    // Communication thread only. DataCom returns the address of retVar.
    RW_VAR retVar;
    int activeSource = SOURCE_NONE;
    int writeBurst = 0;
    int onceBurst = 0;

    // Guarded by listMutex, like ComInfo's cycleDone: a rebuild of readList sets both.
    int cycleCount = 0;

    // Written by the communication thread, read by every thread that writes values.
    std::atomic<unsigned char> commFailed{0};
    unsigned char spareFlag = 0;

    // Communication thread only.
    PendingMerge pendingMerge;
};

extern VELKO_API Modbus_RTU_Master PLC_driver;
extern VELKO_API StationImages DataStorage;

extern "C" {
extern VELKO_API void *LB;
extern VELKO_API void *LW;
extern VELKO_API void *RWI;
}
