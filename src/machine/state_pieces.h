// Loads a state blob piece by piece.
#pragma once

#include <cstdint>

class StatePieces {
public:
    StatePieces(const uint8_t* data, uint32_t size)
        : next(data)
        , left(size) {}

    // Passes the rest to `load` (const uint8_t*, uint32_t), which returns the bytes it used, or 0.
    template <typename Load>
    [[nodiscard]] bool Take(Load&& load) {
        const uint32_t used = load(next, left);
        next += used;
        left -= used;
        return used != 0;
    }

    // The same for a chip and its loader.
    template <typename Chip>
    [[nodiscard]] bool Load(Chip& chip, uint32_t (*load)(Chip&, const uint8_t*, uint32_t)) {
        return Take([&](const uint8_t* data, uint32_t size) { return load(chip, data, size); });
    }

    // The bytes that no piece has taken yet.
    [[nodiscard]] const uint8_t* Rest() const { return next; }
    [[nodiscard]] uint32_t Left() const { return left; }

private:
    const uint8_t* next;
    uint32_t left;
};
