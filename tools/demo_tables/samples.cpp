#include "demo_tables/samples.h"

#include "base/bytes.h"
#include "base/files.h"

#include "demo_tables/table_text.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kRiffHeader = 12; // "RIFF", size, "WAVE"
constexpr size_t kChunkHeader = 8; // tag, size
constexpr size_t kFormatBytes = 16;

bool HasTag(const std::vector<uint8_t>& bytes, size_t at, const char* tag) {
    return at + 4 <= bytes.size() && std::memcmp(bytes.data() + at, tag, 4) == 0;
}

// The content of the first chunk with this tag, empty if there is none.
std::vector<uint8_t> Chunk(const std::vector<uint8_t>& bytes, const char* tag) {
    size_t at = kRiffHeader;
    while (at + kChunkHeader <= bytes.size()) {
        const size_t size = LoadLittleEndian<uint32_t>(bytes.data() + at + 4);
        const size_t begin = at + kChunkHeader;
        if (size > bytes.size() - begin) {
            return {};
        }
        if (HasTag(bytes, at, tag)) {
            return {bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                    bytes.begin() + static_cast<std::ptrdiff_t>(begin + size)};
        }
        at = begin + size + size % 2;
    }
    return {};
}

} // namespace

bool ConvertSamples(const std::filesystem::path& file, std::string& text, std::string& error) {
    std::vector<uint8_t> bytes;
    if (!ReadFile(file, bytes, error)) {
        return false;
    }
    const std::vector<uint8_t> format = Chunk(bytes, "fmt ");
    std::vector<uint8_t> samples = Chunk(bytes, "data");
    std::string fault;
    if (!HasTag(bytes, 0, "RIFF") || !HasTag(bytes, 8, "WAVE") || format.size() < kFormatBytes ||
        samples.empty()) {
        fault = "is no WAV file";
    } else if (LoadLittleEndian<uint16_t>(format.data()) != 1 ||
               LoadLittleEndian<uint16_t>(format.data() + 2) != 1 ||
               LoadLittleEndian<uint32_t>(format.data() + 4) != kSampleRate ||
               LoadLittleEndian<uint16_t>(format.data() + 14) != 8) {
        fault = "must be PCM of 8 bits, one channel, 8900 Hz";
    } else if (const auto zero = std::find(samples.begin(), samples.end(), 0);
               zero != samples.end()) {
        fault = "sample " + std::to_string(zero - samples.begin()) +
                " is 0, which would end it; 1 is the lowest";
    }
    if (!fault.empty()) {
        error = file.string() + ": " + fault;
        return false;
    }
    samples.push_back(0);
    text = TextOf(
        {
            {file.stem().string(), samples}
    },
        LANGUAGE::kAssembly);
    return true;
}
