// The registers of a simulated station.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace velko
{

/// Register n, counted from 0, is at index n. Has no lock: its owner guards it.
class StationMemory
{
public:
    /// Fills the registers with values that differ between registers, between the two bytes of a
    /// register, and between stations. `position`: of the station in the list of stations, from 0.
    explicit StationMemory(int position);

    /// Sets the moving input registers to their values at this time after the start.
    void move(std::chrono::milliseconds elapsed);

    std::vector<uint16_t> &inputRegisters() { return m_input; }
    const std::vector<uint16_t> &inputRegisters() const { return m_input; }
    std::vector<uint16_t> &holdingRegisters() { return m_holding; }
    const std::vector<uint16_t> &holdingRegisters() const { return m_holding; }

private:
    int m_position;
    std::vector<uint16_t> m_input;
    std::vector<uint16_t> m_holding;
};

/// Describes the registers while values move, in lines of text.
std::string registerMap();

} // namespace velko
