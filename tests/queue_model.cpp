#include "tests/queue_model.h"

#include <algorithm>

namespace
{

bool haveSameOwner(const RW_VAR &left, const RW_VAR &right)
{
    return left.ownerId == right.ownerId && left.ownerTag == right.ownerTag;
}

bool haveSameRange(const RW_VAR &left, const RW_VAR &right)
{
    return left.station == right.station && left.varKind == right.varKind && left.addr == right.addr
           && left.count == right.count;
}

} // namespace

void QueueModel::queueWrite(const RW_VAR &request)
{
    for (size_t i = 1; i < entries.size(); ++i) {
        if (haveSameRange(entries[i], request)) {
            entries[i] = request;
            return;
        }
    }
    if (entries.size() < 1024)
        entries.push_back(request);
}

void QueueModel::queueOnceRead(const RW_VAR &request)
{
    const auto isSame = [&](const RW_VAR &entry) {
        return haveSameRange(entry, request) && haveSameOwner(entry, request);
    };
    if (std::none_of(entries.begin(), entries.end(), isSame) && entries.size() < 1024)
        entries.push_back(request);
}

const RW_VAR *QueueModel::due(const std::set<int> &disabled)
{
    const auto first = std::find_if(entries.begin(), entries.end(), [&](const RW_VAR &entry) {
        return disabled.count(entry.station) == 0;
    });
    if (first == entries.end())
        return nullptr;
    for (auto moves = first - entries.begin(); moves > 0; --moves)
        moveHeadToEnd();
    return &entries.front();
}

// std::rotate would move every entry of a long list in each turn.
void QueueModel::moveHeadToEnd()
{
    entries.push_back(entries.front());
    entries.pop_front();
}

std::string QueueModel::rotate(bool good)
{
    if (!entries.empty())
        moveHeadToEnd();
    return good ? "none" : "fail 0 1";
}

std::string QueueModel::end(const ComInfo &link, bool good)
{
    if (entries.empty())
        return "an entry";
    const RW_VAR head = entries.front();
    entries.pop_front();
    const std::string owner = std::to_string(head.ownerId);
    const std::string done = "done " + std::to_string(link.linkId) + " " + owner + " "
                             + std::to_string(head.ownerTag) + " ";
    const auto hasOwner = [&](const RW_VAR &entry) { return haveSameOwner(entry, head); };
    if (good)
        return std::any_of(entries.begin(), entries.end(), hasOwner) ? "none" : done + "1";
    const auto goesToo = [&](const RW_VAR &entry) {
        return hasOwner(entry) && (link.perVarStation == 0 || entry.station == head.station);
    };
    entries.erase(std::remove_if(entries.begin(), entries.end(), goesToo), entries.end());
    return done + "2, fail " + owner + " 1";
}
