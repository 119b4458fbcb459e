// The settings store: a process-wide list of named, typed values.
//
// Names are lower-cased on registration and on lookup, A to Z alone. The list has the newest setting
// at its head, which is also the order of the file. Beside the list stands an index by name, so that a
// lookup costs one hash of the name and, nearly always, one comparison.
//
// Threads: registration and Load happen on the main thread before any other thread runs. After that
// any thread reads and the main thread alone sets; numbers are single atomic words, read without a
// lock. Texts take a small lock, since they are more than a word; no session thread reads one.
// Failure: a missing name gives 0, false or an empty text; nothing is reported.
#pragma once

#include "base/ranked_mutex.h"

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

enum class SettingType : uint8_t { kInt = 0, kInt2 = 1, kString = 2, kBool = 3, kFloat = 4 };

// One setting. Every type has its own field; the others keep their zeroes, and a getter of the wrong
// type reads them. `stringValue` is reached through the store, which holds its lock.
struct Setting {
    std::wstring name; // lower case, always
    std::wstring stringValue;
    std::atomic<bool> boolValue{false};
    std::atomic<int32_t> intValue{0};
    std::atomic<int32_t> intValue2{0}; // second value of kInt2
    std::atomic<SettingType> type{SettingType::kInt};
    std::atomic<float> floatValue{0.0f};
    // For whoever gives the numbers their meaning: what follows from them, kept where one lookup finds
    // both. Never saved.
    mutable std::atomic<uint64_t> note{0};
    std::unique_ptr<Setting> next; // older settings
};

// The beginning that many names share, hashed once, so that a lookup hashes only the rest of the name.
// The text must outlive it.
class SettingPrefix {
public:
    explicit constexpr SettingPrefix(std::wstring_view prefix)
        : text(prefix)
        , hash(Hash(kHashStart, prefix)) {}

    // A rolling hash, which goes on where the part before stopped. Bit 5 tells the two cases of a letter
    // apart and is left out; the index compares the names themselves anyway. A multiplying hash would
    // wait four clocks for each character, this one waits two.
    [[nodiscard]] static constexpr uint64_t Hash(uint64_t hash, std::wstring_view text) {
        for (const wchar_t c : text) {
            hash = std::rotl(hash, 7) ^ (static_cast<uint32_t>(c) | kCaseBit);
        }
        return hash;
    }

    [[nodiscard]] constexpr std::wstring_view Text() const { return text; }
    [[nodiscard]] constexpr uint64_t State() const { return hash; }

private:
    static constexpr uint64_t kHashStart = 1;
    static constexpr uint32_t kCaseBit = 0x20;

    std::wstring_view text;
    uint64_t hash;
};

class SettingsStore {
public:
    SettingsStore();
    ~SettingsStore();
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    // Registering a name that exists overwrites its value and type; its place in the list stays, and
    // so does what stands in the fields of other types.
    void RegisterInt(std::wstring_view name, int32_t value);
    void RegisterInt2(std::wstring_view name, int32_t value, int32_t value2);
    void RegisterString(std::wstring_view name, std::wstring_view value);
    void RegisterBool(std::wstring_view name, bool value);
    void RegisterFloat(std::wstring_view name, float value);

    [[nodiscard]] int32_t GetInt(std::wstring_view name) const;
    [[nodiscard]] std::pair<int32_t, int32_t> GetInt2(std::wstring_view name) const;
    [[nodiscard]] std::wstring GetString(std::wstring_view name) const;
    [[nodiscard]] bool GetBool(std::wstring_view name) const;
    [[nodiscard]] float GetFloat(std::wstring_view name) const;

    // A setter changes the value of an existing setting, whatever its type, and does nothing for an
    // unknown name. The type stays.
    void SetInt(std::wstring_view name, int32_t value);
    void SetInt2(std::wstring_view name, int32_t value, int32_t value2);
    void SetString(std::wstring_view name, std::wstring_view value);
    void SetBool(std::wstring_view name, bool value);
    void SetFloat(std::wstring_view name, float value);

    // Null for an unknown name. `prefix` and `name` are looked up as one name, without joining them;
    // both may be in any case.
    [[nodiscard]] const Setting* Find(std::wstring_view name) const;
    [[nodiscard]] const Setting* Find(std::wstring_view prefix, std::wstring_view name) const;
    [[nodiscard]] const Setting* Find(const SettingPrefix& prefix, std::wstring_view name) const;

    // The newest setting, from which `next` leads through all of them.
    [[nodiscard]] const Setting* First() const { return head.get(); }

    // Takes over what a document validly says about settings that are registered; later elements win. A
    // document that is broken somewhere counts up to there; `reason` then says what is wrong, and is
    // empty for a whole one. False when it can't be read from its start on; nothing has changed then.
    bool Load(const uint8_t* bytes, size_t size);
    bool Load(const uint8_t* bytes, size_t size, std::string& reason);

    // The whole store as a document.
    [[nodiscard]] std::vector<uint8_t> Save() const;

private:
    struct Index;
    using Lock = RankedMutex<LockRank::kLeaf>;

    Setting& Register(std::wstring_view name, SettingType type);
    Setting* FindMutable(std::wstring_view name);
    void StoreString(Setting& setting, std::wstring_view value);
    [[nodiscard]] std::wstring ReadString(const Setting& setting) const;
    void Apply(Setting& setting, const std::string& value, const std::string* value2);

    std::unique_ptr<Setting> head;
    std::unique_ptr<Index> index;
    mutable Lock stringLock; // guards every `stringValue`
};

// The program's store. It lives until the process ends, as session threads may read it until then.
[[nodiscard]] SettingsStore& Settings();

// Registers every setting of the program with the value of a first run, then all bindings: with zero
// values first, then with their defaults. The list is the program's, beside the bindings; the store
// itself knows no name.
void RegisterDefaultSettings(SettingsStore& store);

// Reads and writes `.\config.xml`. What can't be read leaves the defaults; `error` then says what is
// wrong with the file, also when part of it was read and the result is true. It stays empty for a
// missing file. Before the first save over a file that was not read to its end, that file is copied to
// `config.xml.damaged`, or the next free name of that kind, beside it.
bool LoadSettingsFile(SettingsStore& store, std::string& error);
[[nodiscard]] bool SaveSettingsFile(const SettingsStore& store, std::string& error);
