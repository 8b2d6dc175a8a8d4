// The table of disabled stations.
#ifndef DRIVER_STATION_TABLE_H
#define DRIVER_STATION_TABLE_H

/// True when the station is disabled. Takes stationMutex; the caller may hold listMutex.
bool Ethernetcontains(int station);

#endif
