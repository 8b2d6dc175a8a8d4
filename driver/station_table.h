// The table of disabled stations.
#pragma once

/// Returns true if the station is disabled. Takes stationMutex; the caller may hold listMutex.
bool Ethernetcontains(int station);
