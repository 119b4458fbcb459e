// Compares the pieces that the program writes with the tables of docs/STATES.md.
#pragma once

#include "base/bytes.h"

#include "support/state_table.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace state_fields_detail {

template <typename T>
struct ScalarOf {
    using type = T;
};
template <typename T, size_t N>
struct ScalarOf<T[N]> : ScalarOf<T> {};
template <typename T, size_t N>
struct ScalarOf<std::array<T, N>> : ScalarOf<T> {};

} // namespace state_fields_detail

// A field of a live record, by the name that the table has for it.
struct StateField {
    // `bits`: those that a state keeps of each number.
    template <typename T>
    StateField(std::string nameValue, T& field, uint64_t bitsValue = ~uint64_t{0})
        : name(std::move(nameValue))
        , data(reinterpret_cast<uint8_t*>(&field))
        , width(sizeof(typename state_fields_detail::ScalarOf<T>::type))
        , count(sizeof(T) / width)
        , isBool(std::is_same_v<typename state_fields_detail::ScalarOf<T>::type, bool>)
        , bits(bitsValue) {}

    std::string name;
    uint8_t* data;
    size_t width;
    size_t count;
    bool isBool;
    uint64_t bits;
    std::vector<std::string> follow = {}; // rows that are made from this field and change with it
};

using StateFields = std::vector<StateField>;

// Fields of a record within a record: `at` comes before their names.
inline void AppendFields(StateFields& fields, const std::string& at, const StateFields& more) {
    for (StateField field : more) {
        field.name.insert(0, at);
        fields.push_back(std::move(field));
    }
}

// A piece as a chip's functions write it.
template <typename Chip>
auto PieceSaver(const Chip& chip, uint32_t (*size)(), StateOut (*save)(const Chip&, StateOut)) {
    return [&chip, size, save] {
        std::vector<uint8_t> piece(size());
        EXPECT_EQ(save(chip, piece.data()).At(), piece.data() + piece.size());
        return piece;
    };
}

// And as they read it.
template <typename Chip>
auto PieceLoader(Chip& chip, uint32_t (*load)(Chip&, const uint8_t*, uint32_t)) {
    return [&chip, load](const std::vector<uint8_t>& piece) {
        return load(chip, piece.data(), static_cast<uint32_t>(piece.size()));
    };
}

namespace state_fields_detail {

// Another value than `before`, and a different one for each index.
inline uint64_t Another(uint64_t before, uint32_t width, uint64_t bits, size_t index) {
    const uint64_t most = width == 8 ? ~uint64_t{0} : (uint64_t{1} << (8 * width)) - 1;
    const uint64_t value = (index + 1) * 0x9E3779B97F4A7C15U >> (64 - 8 * width) & most & bits;
    return value != before ? value : value ^ (most & bits);
}

inline uint64_t ValueAt(const std::vector<uint8_t>& piece, size_t offset, uint32_t width) {
    uint64_t value = 0;
    for (uint32_t i = 0; i < width; ++i) {
        value |= static_cast<uint64_t>(piece.at(offset + i)) << (8 * i);
    }
    return value;
}

// Sets the field, saves, takes the field back and compares.
template <typename Save>
void ExpectFieldInItsPlace(const STATE_TABLE& table, const STATE_ROW& row, const StateField& field,
                           const std::vector<uint8_t>& before, Save&& save) {
    ASSERT_EQ(row.count, field.count);
    ASSERT_LE(row.width, field.width);
    ASSERT_EQ(row.isBool, field.isBool);
    const std::vector<uint8_t> old(field.data, field.data + field.width * field.count);
    std::vector<uint8_t> expected = before;
    for (size_t i = 0; i < field.count; ++i) {
        const size_t at = row.offset + i * row.width;
        const uint64_t value =
            Another(ValueAt(before, at, row.width), row.width, row.isBool ? 1 : field.bits, i);
        for (uint32_t byte = 0; byte < field.width; ++byte) {
            field.data[i * field.width + byte] =
                byte < 8 ? static_cast<uint8_t>(value >> (8 * byte)) : uint8_t{0};
        }
        for (uint32_t byte = 0; byte < row.width; ++byte) {
            expected[at + byte] = static_cast<uint8_t>(value >> (8 * byte));
        }
    }
    std::vector<uint8_t> after = save();
    std::copy(old.begin(), old.end(), field.data);
    ASSERT_EQ(after.size(), expected.size());
    for (const STATE_ROW& other : table.rows) {
        if (std::find(field.follow.begin(), field.follow.end(), other.name) != field.follow.end()) {
            std::copy_n(expected.begin() + other.offset, other.width * other.count,
                        after.begin() + other.offset);
        }
    }
    const auto differ = std::mismatch(expected.begin(), expected.end(), after.begin());
    EXPECT_TRUE(differ.first == expected.end())
        << "byte " << differ.first - expected.begin() << "; the field is at " << row.offset;
}

} // namespace state_fields_detail

// Every row of the table is a field of the list, every field of the list is a row, and setting a field changes
// its bytes and no other. `save` returns the piece.
template <typename Save>
void ExpectFieldsAsListed(const std::string& piece, const StateFields& fields, Save&& save) {
    SCOPED_TRACE(piece);
    const STATE_TABLE table = ReadStateTable(piece);
    const std::vector<uint8_t> before = save();
    ASSERT_EQ(before.size(), table.size);
    EXPECT_EQ(before[0], table.version);
    EXPECT_EQ(LoadLittleEndian<uint32_t>(&before[1]), table.size);
    std::map<std::string, const StateField*> byName;
    for (const StateField& field : fields) {
        EXPECT_TRUE(byName.emplace(field.name, &field).second) << field.name << " is named twice";
    }
    std::set<std::string> made; // from other fields
    for (const StateField& field : fields) {
        made.insert(field.follow.begin(), field.follow.end());
    }
    for (const STATE_ROW& row : table.rows) {
        SCOPED_TRACE(row.name);
        if (row.name == "-") {
            const auto first = before.begin() + row.offset;
            EXPECT_TRUE(std::all_of(first, first + row.width * row.count,
                                    [](uint8_t byte) { return byte == 0; }));
        } else if (const auto field = byName.find(row.name); field != byName.end()) {
            state_fields_detail::ExpectFieldInItsPlace(table, row, *field->second, before, save);
            byName.erase(field);
        } else {
            EXPECT_EQ(made.count(row.name), 1U) << "no field of this name was tried";
        }
    }
    for (const auto& [name, field] : byName) {
        ADD_FAILURE() << name << " is not in the table";
    }
}

// A version that the program does not know is refused, and nothing changes. `load` takes a piece and returns
// what the chip's loader returns.
template <typename Save, typename Load>
void ExpectOtherVersionsRefused(Save&& save, Load&& load) {
    const std::vector<uint8_t> before = save();
    for (const int version : {0, 2, 3, 255}) {
        std::vector<uint8_t> piece = before;
        piece[0] = static_cast<uint8_t>(version);
        for (size_t i = 5; i < piece.size(); ++i) {
            piece[i] ^= 0x55;
        }
        EXPECT_EQ(load(piece), 0U) << "version " << version;
        EXPECT_EQ(save(), before) << "version " << version;
    }
    EXPECT_EQ(load(before), before.size());
}

// For records that no test can reach: the values that the test set through registers must be in their rows. Every
// row is named; of an array the first values.
inline void ExpectValuesAsListed(const std::string& piece, const std::vector<uint8_t>& block,
                                 const std::map<std::string, std::vector<uint64_t>>& values) {
    SCOPED_TRACE(piece);
    const STATE_TABLE table = ReadStateTable(piece);
    ASSERT_TRUE(table.isOpen ? block.size() > table.size : block.size() == table.size)
        << block.size();
    EXPECT_EQ(block[0], table.version);
    EXPECT_EQ(LoadLittleEndian<uint32_t>(&block[1]), block.size());
    EXPECT_EQ(values.size(), table.rows.size());
    for (const STATE_ROW& row : table.rows) {
        SCOPED_TRACE(row.name);
        const auto found = values.find(row.name);
        ASSERT_NE(found, values.end());
        ASSERT_LE(found->second.size(), row.count);
        for (size_t i = 0; i < found->second.size(); ++i) {
            EXPECT_EQ(state_fields_detail::ValueAt(block, row.offset + i * row.width, row.width),
                      found->second[i])
                << i;
        }
    }
}
