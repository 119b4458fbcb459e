// demo_tables INPUT OUTPUT: turns a picture, a sheet of drawings, a score or a sound of our own demos into the
// tables that their programs include. The input's extension selects the kind.
//
// It also writes OUTPUT.d, a depfile of the files that it has read.
#include "base/files.h"

#include "demo_tables/plane_map.h"
#include "demo_tables/samples.h"
#include "demo_tables/score.h"
#include "demo_tables/sheet.h"

#include <iostream>
#include <span>

namespace {

struct PRODUCT {
    std::string text;
    std::string counts; // of a plane's cells, for a file of their own
    std::vector<std::filesystem::path> read;
};

bool Convert(const std::filesystem::path& input, PRODUCT& product, std::string& error) {
    product.read = {input};
    const std::string kind = input.extension().string();
    if (kind == ".png") {
        PLANE_MAP map;
        if (!ConvertPlane(input, map, error)) {
            return false;
        }
        product.text = map.text;
        product.counts = map.counts;
        return true;
    }
    if (kind == ".sheet") {
        SHEET_RESULT sheet;
        if (!ConvertSheet(input, sheet, error)) {
            return false;
        }
        product.text = sheet.text;
        product.read.push_back(sheet.picture);
        return true;
    }
    if (kind == ".score") {
        return ConvertScore(input, product.text, error);
    }
    if (kind == ".wav") {
        return ConvertSamples(input, product.text, error);
    }
    error = input.string() + ": is not one of .png, .sheet, .score, .wav";
    return false;
}

std::string Escaped(const std::filesystem::path& path) {
    std::string escaped;
    for (const char c : path.string()) {
        escaped += c == ' ' ? "\\ " : std::string(1, c);
    }
    return escaped;
}

std::string Dependencies(const std::filesystem::path& output, const PRODUCT& product) {
    std::string text = Escaped(output) + ":";
    for (const std::filesystem::path& file : product.read) {
        text += " " + Escaped(file);
    }
    return text + "\n";
}

bool WriteText(const std::filesystem::path& file, const std::string& text, std::string& error) {
    return WriteFile(file, std::vector<uint8_t>(text.begin(), text.end()), error);
}

bool Run(const std::filesystem::path& input, const std::filesystem::path& output,
         std::string& error) {
    PRODUCT product;
    if (!Convert(input, product, error)) {
        return false;
    }
    if (!product.counts.empty()) {
        const std::string name = output.stem().string() + "_count" + output.extension().string();
        if (!WriteText(output.parent_path() / name, product.counts, error)) {
            return false;
        }
    }
    return WriteText(output, product.text, error) &&
           WriteText(output.string() + ".d", Dependencies(output, product), error);
}

} // namespace

int main(int count, char** words) {
    const std::span<char*> arguments(words, static_cast<size_t>(count));
    if (arguments.size() != 3) {
        std::cerr << "usage: demo_tables INPUT OUTPUT\n";
        return 2;
    }
    std::string error;
    if (!Run(arguments[1], arguments[2], error)) {
        std::cerr << error << "\n";
        return 1;
    }
    return 0;
}
