#include "host/core/trust/open_requests.h"

#include "host/core/line/replies.h"
#include "host/core/sizes/frames.h"

#include <algorithm>
#include <iterator>

namespace velko
{

namespace
{

// In a write request and in its response: register address and count.
QByteArray registersIn(const QByteArray &frame)
{
    return byteAt(frame, 1) == WRITE_MULTIPLE_REGISTERS ? frame.mid(2, 4) : QByteArray();
}

} // namespace

void OpenRequests::begin(const QByteArray &request, int responseLength, Purpose purpose)
{
    m_asked = byteAt(request, 0);
    m_latestOfAsked.reset();
    m_purpose = purpose;
    Station &station = m_stations[*m_asked];
    station.lastSent = Clock::now();
    const Entry entry{shapeOfResponse(request, responseLength), registersIn(request), 0, {}};
    Entries &open = station.open;
    if (open.empty() || open.back().response != entry.response
        || open.back().registers != entry.registers)
        open.push_back(entry);
    ++open.back().count;
    open.back().sent = Clock::now() + wireTime(m_line, request.size());
}

std::optional<ResponseShape> OpenRequests::end()
{
    m_asked.reset();
    return m_latestOfAsked;
}

bool OpenRequests::isResponse(const QByteArray &frame, Clock::time_point arrival)
{
    const int number = byteAt(frame, 0);
    Station &station = m_stations[number];
    const ResponseShape shape = shapeOf(frame);
    m_heard.insert(number);
    station.latestFrame = shape;
    if (m_asked == number)
        m_latestOfAsked = shape;
    const auto place = placeOf(station.open, frame);
    if (place == station.open.end()) {
        noteStray(station, shape);
        return false;
    }
    const auto delay =
        std::chrono::ceil<milliseconds>(arrival - wireTime(m_line, frame.size()) - place->sent);
    station.slowest = std::max({station.slowest.value_or(delay), delay, milliseconds(0)});
    const bool isLastOfPlace = --place->count == 0;
    station.open.erase(station.open.begin(), isLastOfPlace ? std::next(place) : place);
    if (!station.open.empty())
        return false;
    const bool isAsked = m_asked == number; // its request was the newest one
    noteTrust(station, shape, isAsked && m_purpose == CHECK_READ);
    return isAsked;
}

bool OpenRequests::isUntrusted(int station, const ResponseShape &response) const
{
    const auto place = m_stations.find(station);
    if (place == m_stations.end())
        return false;
    const Station &known = place->second;
    if (!known.open.empty())
        return true;
    const bool isCopyOfCheck = known.stray == known.check && known.stray != response;
    return known.stray && !isCopyOfCheck;
}

bool OpenRequests::isOpen(int station) const
{
    const auto place = m_stations.find(station);
    return place != m_stations.end() && !place->second.open.empty();
}

void OpenRequests::forget(int station)
{
    m_stations[station].open.clear();
    m_stations[station].stray.reset();
}

bool OpenRequests::awaits(int station, const ResponseShape &response) const
{
    const auto place = m_stations.find(station);
    return place != m_stations.end()
           && firstPosition(station, response) < place->second.open.size();
}

size_t OpenRequests::firstPosition(int station, const ResponseShape &response) const
{
    const auto place = m_stations.find(station);
    if (place == m_stations.end())
        return 0;
    const Entries &open = place->second.open;
    const auto first = std::find_if(open.begin(), open.end(),
                                    [&](const Entry &entry) { return entry.response == response; });
    return static_cast<size_t>(first - open.begin());
}

std::optional<ResponseShape> OpenRequests::latestFrame(int station) const
{
    const auto place = m_stations.find(station);
    return place == m_stations.end() ? std::nullopt : place->second.latestFrame;
}

std::optional<Clock::time_point> OpenRequests::lastSent(int station) const
{
    const auto place = m_stations.find(station);
    return place == m_stations.end() ? std::nullopt : place->second.lastSent;
}

std::optional<milliseconds> OpenRequests::slowestResponse(int station) const
{
    const auto place = m_stations.find(station);
    return place == m_stations.end() ? std::nullopt : place->second.slowest;
}

std::set<int> OpenRequests::takeHeard()
{
    std::set<int> heard;
    heard.swap(m_heard);
    return heard;
}

bool OpenRequests::fits(const Entry &entry, const QByteArray &frame)
{
    return entry.response == shapeOf(frame) && entry.registers == registersIn(frame);
}

// The oldest open request that the frame may answer.
OpenRequests::Entries::iterator OpenRequests::placeOf(Entries &open, const QByteArray &frame)
{
    const int function = byteAt(frame, 1);
    if ((function & EXCEPTION_FLAG) != 0)
        return placeOfException(open, function & ~EXCEPTION_FLAG);
    return std::find_if(open.begin(), open.end(),
                        [&](const Entry &entry) { return fits(entry, frame); });
}

OpenRequests::Entries::iterator OpenRequests::placeOfException(Entries &open, int function)
{
    const auto hasFunction = [function](const Entry &entry) {
        return entry.response.function == function;
    };
    const auto place = std::find_if(open.begin(), open.end(), hasFunction);
    if (place == open.end())
        return place;
    const bool isOnly =
        place->count == 1 && std::none_of(std::next(place), open.end(), hasFunction);
    return isOnly ? place : open.end();
}

void OpenRequests::noteStray(Station &station, const ResponseShape &stray)
{
    if (!station.stray || station.stray == station.check)
        station.stray = stray;
}

void OpenRequests::noteTrust(Station &station, const ResponseShape &answer, bool isCheck)
{
    station.stray.reset();
    station.check.reset();
    if (isCheck)
        station.check = answer;
}

} // namespace velko
