// Sets of variables as panels have them, made from a seed: the same one gives the same set anywhere.
#pragma once

#include "host/core/variables/variable.h"

/// DENSE: blocks of data and recipes, in which nearly every register is used. SCATTERED: small groups
/// all over the three areas, with gaps within them and between them. MIXED: machine units as a PLC's
/// programmer lays them out, each with its bits, bytes, words, double words and now and then a text.
enum class TagSet { DENSE, SCATTERED, MIXED };

/// "dense", "scattered" or "mixed".
std::string nameOf(TagSet set);

/// So many variables of station 1, in no order, none twice. Throws std::invalid_argument where they
/// do not fit into the registers that have a number on the line.
std::vector<velko::Variable> makeTags(TagSet set, int variables, unsigned seed);

/// The same as items for ReCreatReadVarList.
QList<VAR_ITEM> makeTagSet(TagSet set, int variables, unsigned seed);
