#include "lists/Func_Initi.h"

#include "driver/modbus_rtu_master.h"
#include "driver/own_copy.h"
#include "lists/address_model.h"
#include "lists/register_pieces.h"

#include <QMutexLocker>

#include <algorithm>
#include <utility>
#include <vector>

namespace
{

/// Station -> area code -> requests, both in ascending order.
typedef QMap<int, QMap<int, QList<RW_VAR>>> RequestGroups;

/// Address, then index: records with equal addresses keep their order.
typedef std::pair<int, int> SortKey;

std::vector<SortKey> sortedKeys(const QList<RW_VAR> &records)
{
    std::vector<SortKey> keys;
    keys.reserve(static_cast<size_t>(records.size()));
    for (int i = 0; i < records.size(); ++i)
        keys.push_back(SortKey(records.at(i).addr, i));
    std::sort(keys.begin(), keys.end());
    return keys;
}

/// Moves the record with the index of keys[i] to i, each record once. Overwrites the indices.
void moveTo(SortKey *keys, int count, const QList<RW_VAR>::iterator &records)
{
    for (int start = 0; start < count; ++start) {
        if (keys[start].second == start)
            continue;
        RW_VAR first = std::move(records[start]);
        int to = start;
        for (int from = keys[to].second; from != start; from = keys[to].second) {
            records[to] = std::move(records[from]);
            keys[to].second = to;
            to = from;
        }
        records[to] = std::move(first);
        keys[to].second = to;
    }
}

qint64 endOf(const RW_VAR &record)
{
    return static_cast<qint64>(record.addr) + record.count;
}

// Gap registers are read only if the next record starts at most maxRegs registers after the start
// of this one.
bool isApart(const RW_VAR &current, const RW_VAR &next, int maxRegs)
{
    return endOf(current) < next.addr && next.addr > static_cast<qint64>(current.addr) + maxRegs;
}

void mergeInto(RW_VAR &current, const RW_VAR &next)
{
    if (endOf(next) > endOf(current))
        current.count = static_cast<int>(endOf(next) - current.addr);
}

// Removes the first `merged` records and takes the next one. What is freed here serves the next
// request of the list; freed at the end, it costs more instructions.
RW_VAR takeBehind(QList<RW_VAR> &group, int merged)
{
    if (merged > 0)
        group.erase(group.begin(), group.begin() + merged);
    return group.takeFirst();
}

// Calls `work` for each group, in ascending order of station and area.
template <typename Work> void forEachGroup(RequestGroups &groups, const Work &work)
{
    for (RequestGroups::iterator station = groups.begin(); station != groups.end(); ++station) {
        QMap<int, QList<RW_VAR>>::iterator area = station->begin();
        for (; area != station->end(); ++area)
            work(*area);
    }
}

RW_VAR cyclicTemplate(const ComInfo &info)
{
    RW_VAR record;
    record.ownerTag = OWNER_TAG_CYCLIC;
    record.linkMode = info.remoteMode;
    record.areaNo = info.localArea;
    return record;
}

// Returns false if the item is left out.
bool fillFromItem(RW_VAR &record, const VAR_ITEM &item, int station)
{
    record.station = station;
    const int offset = StringAddressToInt(item.kind, item.addrText);
    if (offset < 0 || station == 0)
        return false;
    const RegisterRange range = ToRegisterRange(item.kind, offset, item.length);
    record.varKind = range.areaCode;
    record.addr = range.firstRegister;
    record.count = range.count;
    record.addrText = ownText(item.addrText);
    record.varName = ownText(item.varName);
    return range.count <= LIMIT_REGISTERS;
}

// Returns one sorted group for each station and area.
RequestGroups groupItems(const QList<VAR_ITEM> &items, const ComInfo &info)
{
    RequestGroups groups;
    RW_VAR record = cyclicTemplate(info);
    for (int i = 0; i < items.size(); ++i) {
        if (fillFromItem(record, items.at(i), info.defaultStation))
            groups[record.station][record.varKind].append(record);
    }
    forEachGroup(groups, [](QList<RW_VAR> &group) { Bubble_Sort(&group); });
    return groups;
}

} // namespace

void Bubble_Sort(QList<RW_VAR> *records)
{
    // Records are large, so only their addresses are sorted and each record is moved at most once.
    std::vector<SortKey> keys = sortedKeys(*records);
    moveTo(keys.data(), records->size(), records->begin());
}

void addressAdd(RW_VAR &record, int maxRegs, bool keepRest)
{
    const RegisterPieces pieces(record.count, maxRegs);
    for (int i = 0; i < pieces.full(); ++i)
        PLC_driver.readList.append(pieceOf(record, pieces, i));
    record.addr += pieces.start(pieces.full());
    record.count -= pieces.start(pieces.full());
    if (keepRest && record.count > 0)
        PLC_driver.readList.append(record);
}

void BitVarReCreat(QList<RW_VAR> *group, int maxRegs)
{
    if (group->isEmpty())
        return;
    RW_VAR current = group->takeFirst();
    addressAdd(current, maxRegs, false);
    int merged = 0; // records at the head of the group that are in `current` already
    while (merged < group->size()) {
        const RW_VAR &next = group->at(merged);
        if (current.count != 0 && !isApart(current, next, usableMaxRegs(maxRegs))) {
            mergeInto(current, next);
            ++merged;
            continue;
        }
        addressAdd(current, maxRegs, true);
        current = takeBehind(*group, merged);
        merged = 0;
    }
    addressAdd(current, maxRegs, true);
}

int ReCreatReadVarList(const QList<VAR_ITEM> *items)
{
    ComInfo *const info = PLC_driver.comInfo;
    if (!info)
        return 0;
    // The items are sorted before the lock is taken, and the old list is freed after the lock is
    // released, so the communication loop does not wait for either.
    const int maxRegs = info->maxRegs;
    RequestGroups groups = items ? groupItems(*items, *info) : RequestGroups();
    QList<RW_VAR> old;
    const QMutexLocker lock(&PLC_driver.listMutex);
    if (!items)
        return PLC_driver.readList.size();
    old.swap(PLC_driver.readList);
    if (items->isEmpty())
        return 0;
    PLC_driver.cycleCount = 0;
    info->cycleDone = 0;
    forEachGroup(groups, [maxRegs](QList<RW_VAR> &group) { BitVarReCreat(&group, maxRegs); });
    return PLC_driver.readList.size();
}

int AddListReadVar(const RW_VAR *request)
{
    if (request)
        PLC_driver.readList.append(ownRecord(*request));
    return PLC_driver.readList.size();
}

void WhetherGroup(int total, int maxRegs, RW_VAR *record, QList<RW_VAR> *pieces)
{
    if (!record || !pieces)
        return;
    if (total <= usableMaxRegs(maxRegs)) {
        pieces->append(*record);
        return;
    }
    const RegisterPieces cut(total, maxRegs);
    if (cut.count() > LIMIT_REGISTERS)
        return;
    const RW_VAR whole = *record;
    for (int i = 0; i < cut.count(); ++i) {
        *record = pieceOf(whole, cut, i);
        pieces->append(*record);
    }
}
