// A video file: the pictures of a machine at its exact rate, and its sound.
//
// The container is that of the file's extension, .mkv or .mp4. Pictures are scaled by whole dots, so that edges stay
// edges; how wide a dot is on a display is in the stream. Two forms:
//
//     kEverywhere  H.264 (High, 4:2:0) at a quality beyond what the eye tells; every player shows it. A dot is an even
//                  number of pixels in both directions, so none loses its colour. Sound: FLAC in .mkv, AAC in .mp4.
//     kLossless    FFV1, a pixel a dot, each exactly as the machine made it, and FLAC; .mkv alone.
//
// This is a module of its own, loaded when the first video begins: its libraries are many, and would make every start of
// the program slower. It uses nothing of ours.
//
// Threads: one at a time. Failure: false, with one line; the file is then as far as it got.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

enum class VideoForm : uint8_t { kEverywhere, kLossless };

struct VIDEO_FORMAT {
    VideoForm form = VideoForm::kEverywhere;
    uint32_t width = 0; // of a picture, in dots
    uint32_t height = 0;
    uint32_t dotPixels = 4;   // of kEverywhere, in both directions: 2 or 4
    double aspect = 0.0;      // width to height on a display; 0: dots are square
    uint32_t rateNumber = 60; // pictures a second
    uint32_t rateDivisor = 1;
    uint32_t sampleRate = 44100; // pairs a second
};

class CVideoFile {
public:
    virtual ~CVideoFile() = default; // ends the file

    [[nodiscard]] virtual bool Open(const std::string& path, const VIDEO_FORMAT& format,
                                    std::string& error) = 0;

    // The next picture, rows of `width` pixels with blue in the lowest byte. One of another size than the file's is
    // stretched to it.
    [[nodiscard]] virtual bool AddPicture(const uint32_t* pixels, uint32_t width, uint32_t height,
                                          std::string& error) = 0;
    // The picture before, once more.
    [[nodiscard]] virtual bool RepeatPicture(std::string& error) = 0;

    // Sound that comes after what there is: left, right, left, ...
    [[nodiscard]] virtual bool AddSound(const int16_t* samples, uint32_t pairs,
                                        std::string& error) = 0;

    // Writes the end. Nothing is added after it.
    [[nodiscard]] virtual bool Close(std::string& error) = 0;

    CVideoFile(const CVideoFile&) = delete;
    CVideoFile& operator=(const CVideoFile&) = delete;

protected:
    CVideoFile() = default;
};

// Of the module, and of tests that link its code.
[[nodiscard]] std::unique_ptr<CVideoFile> MakeVideoFile();

// What the module exports, by this name; the caller deletes the object.
inline constexpr const char* kVideoModuleEntry = "OmbreluneMakeVideoFile";
using VideoModuleEntry = CVideoFile* (*)();
