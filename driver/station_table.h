// The table of disabled stations.
#pragma once

/// True when the station is disabled. Takes stationMutex; the caller may hold listMutex.
bool Ethernetcontains(int station);
