// The settings store: a process-wide list of named, typed values.
//
// Names are lower-cased on registration and on lookup, A to Z alone. The newest setting is at the head
// of the list, which is also the order of the file. An index by name makes a lookup cost one hash of
// the name and, nearly always, one comparison.
//
// Threads: registration and Load happen on the main thread before any other thread runs. After that any
// thread reads and only the main thread sets. Numbers are single atomic words, read without a lock.
// Texts take a small lock; no session thread reads one.
// Failure: an unknown name returns 0, false or an empty text; nothing is reported.
#pragma once

#include "base/ranked_mutex.h"

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

enum class SettingType : uint8_t { kInt = 0, kInt2 = 1, kString = 2, kBool = 3, kFloat = 4 };

// One setting. Every type has its own field; the others stay 0, and a getter of the wrong type returns
// that. `stringValue` is reached through the store, which holds its lock.
struct Setting {
    std::wstring name; // lower case, always
    std::wstring stringValue;
    std::atomic<bool> boolValue{false};
    std::atomic<int32_t> intValue{0};
    std::atomic<int32_t> intValue2{0}; // second value of kInt2
    std::atomic<SettingType> type{SettingType::kInt};
    std::atomic<float> floatValue{0.0f};
    // Computed from the values by the layer that knows their meaning (`bindings/action_notes.h`), kept
    // here so that one lookup finds both. Never saved.
    mutable std::atomic<uint64_t> note{0};
    // What the file says in words. Main thread.
    struct WORDS {
        std::string text;
        int32_t value; // after the load; while the setting has it, the text is written again
    };
    std::optional<WORDS> words[2];                                        // of kInt2
    std::optional<int32_t> (*readWords)(std::string_view text) = nullptr; // null: numbers only
    bool inFile = false;                                                  // its value was read
    std::unique_ptr<Setting> next;                                        // older settings
};

// The prefix that many names share, hashed once, so that a lookup hashes only the rest of the name. The
// text must outlive the object.
class SettingPrefix {
public:
    explicit constexpr SettingPrefix(std::wstring_view prefix)
        : text(prefix)
        , hash(Hash(kHashStart, prefix)) {}

    // A rolling hash, which continues that of the prefix. It leaves out bit 5, the case of a letter;
    // the index compares the names themselves anyway. Two clocks of latency a character, against four
    // with a multiplication.
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

    // Registering an existing name overwrites its value and type; its place in the list and the fields
    // of other types stay.
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

    // A setter changes the value of an existing setting of any type, and does nothing for an unknown
    // name. The type stays.
    void SetInt(std::wstring_view name, int32_t value);
    void SetInt2(std::wstring_view name, int32_t value, int32_t value2);
    void SetString(std::wstring_view name, std::wstring_view value);
    void SetBool(std::wstring_view name, bool value);
    void SetFloat(std::wstring_view name, float value);

    // Lets the values of a kInt2 also be written in words, which this function reads. Words that it does not know leave
    // the value as it is, and stay in the file. Before Load.
    void SetWordReader(std::wstring_view name, std::optional<int32_t> (*reader)(std::string_view));

    // Null for an unknown name. `prefix` and `name` are looked up as one name, without joining them;
    // both may be in any case.
    [[nodiscard]] const Setting* Find(std::wstring_view name) const;
    [[nodiscard]] const Setting* Find(std::wstring_view prefix, std::wstring_view name) const;
    [[nodiscard]] const Setting* Find(const SettingPrefix& prefix, std::wstring_view name) const;

    // The newest setting, from which `next` leads through all of them.
    [[nodiscard]] const Setting* First() const { return head.get(); }

    // Reads the valid entries of registered settings from a document; later entries win. A malformed
    // document is used up to its first error; `reason` then says what is wrong, and is empty for a
    // valid one. False if nothing could be read; nothing has changed then.
    bool Load(const uint8_t* bytes, size_t size);
    // `unknownWords`, if not null, gets a line for each value in words that nothing knows.
    bool Load(const uint8_t* bytes, size_t size, std::string& reason,
              std::vector<std::string>* unknownWords = nullptr);

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
    static bool ApplyNumberOrWords(Setting& setting, size_t which, const std::string& text);

    std::unique_ptr<Setting> head;
    std::unique_ptr<Index> index;
    mutable Lock stringLock; // guards every `stringValue`
};

// The program's store. It is never destroyed, as session threads may read it until the process ends.
[[nodiscard]] SettingsStore& Settings();

// Registers every setting of the program with its default, then all bindings: with zero values first,
// then with their defaults. Defined beside the bindings (settings_table.cpp); the store itself knows no
// name.
void RegisterDefaultSettings(SettingsStore& store);

// Reads and writes `.\config.xml`. Values that can't be read keep their defaults; `error` then says
// what is wrong with the file, even if part of it was read and the result is true. It stays empty for a
// missing file. Before the first save over a file that was not read to its end, that file is copied to
// `config.xml.damaged`, or the next free name of that kind, beside it.
// `unknownWords` is that of SettingsStore::Load, with the file's path in each line.
bool LoadSettingsFile(SettingsStore& store, std::string& error,
                      std::vector<std::string>* unknownWords = nullptr);
[[nodiscard]] bool SaveSettingsFile(const SettingsStore& store, std::string& error);
