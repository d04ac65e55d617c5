#pragma once

#include <QtGlobal>

#include <string_view>

namespace imageservice {

/// A stream of chances that is the same on every run and machine for the same seed and purpose.
/// Each purpose has a stream of its own, so that a new detail in one layer leaves the others alone.
class Dice
{
public:
    Dice(quint64 seed, std::string_view purpose) : m_state(seed)
    {
        for (const char letter : purpose) {
            m_state = (m_state ^ static_cast<quint8>(letter)) * 0x100000001B3U;
        }
    }

    quint64 next()
    {
        m_state += 0x9E3779B97F4A7C15U;
        quint64 value = m_state;
        value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
        value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
        return value ^ (value >> 31U);
    }

    /// At least 0, below 1.
    float unit() { return static_cast<float>(next() >> 40U) / 16777216.0F; }
    float between(float low, float high) { return low + (high - low) * unit(); }
    /// At least 0, below @p count.
    int below(int count) { return static_cast<int>(next() % static_cast<quint64>(count)); }
    bool chance(float probability) { return unit() < probability; }

private:
    quint64 m_state;
};

} // namespace imageservice
