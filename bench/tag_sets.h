// Sets of variables as panels have them, generated from a seed. A seed gives the same set on every
// machine.
#pragma once

#include "host/core/variables/variable.h"
#include "velko_modbus_rtu.h"

#include <QList>

#include <string>
#include <vector>

/// DENSE: blocks of data and recipes, in which nearly every register is used. SCATTERED: small
/// groups scattered over the three areas, with gaps within and between them. MIXED: machine units
/// as a PLC programmer lays them out, each with bits, bytes, words, double words and sometimes a
/// text.
enum class TagSet { DENSE, SCATTERED, MIXED };

/// "dense", "scattered" or "mixed".
std::string nameOf(TagSet set);

/// Returns `variables` different variables of station 1 in random order. Throws
/// std::invalid_argument if they do not fit into the registers that a frame can address.
std::vector<velko::Variable> makeTags(TagSet set, int variables, unsigned seed);

/// The same as items for ReCreatReadVarList.
QList<VAR_ITEM> makeTagSet(TagSet set, int variables, unsigned seed);
