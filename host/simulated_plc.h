// A PLC on a pseudo-terminal, for trying the driver without a device. libmodbus does its protocol.
#pragma once

#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class SimulatedPlc
{
public:
    /// Starts a slave of this station number. Throws std::runtime_error.
    explicit SimulatedPlc(int station);
    ~SimulatedPlc();
    SimulatedPlc(const SimulatedPlc &) = delete;
    SimulatedPlc &operator=(const SimulatedPlc &) = delete;

    /// The device that a master opens.
    QString device() const { return m_device; }

    int station() const { return m_station; }

    /// From now on leaves every n-th request unanswered; 0: none. Any thread.
    void loseEvery(int n) { m_loseEvery = n; }

    /// Copies of its memory: register n stands at index n. Any thread.
    std::vector<uint16_t> inputRegisters() const;
    std::vector<uint16_t> holdingRegisters() const;

private:
    struct Protocol; // what libmodbus needs

    void serve();

    int m_station;
    QString m_device;
    std::unique_ptr<Protocol> m_protocol;
    mutable std::mutex m_memoryMutex;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_loseEvery{0};
    std::thread m_thread;
};
