// A container and its two encoders, for video_file.cpp: FFmpeg's objects with their order and their ends.
//
// Failure: false, with FFmpeg's words for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct AVStream;
struct SwsContext;

class VideoContainer {
public:
    VideoContainer() = default;
    ~VideoContainer();
    VideoContainer(const VideoContainer&) = delete;
    VideoContainer& operator=(const VideoContainer&) = delete;

    [[nodiscard]] bool Create(const std::string& path, const char* kind, std::string& error);
    // After both streams were opened.
    [[nodiscard]] bool Begin(std::string& error);
    [[nodiscard]] bool End(std::string& error);

    [[nodiscard]] AVFormatContext* Context() const { return context; }

private:
    AVFormatContext* context = nullptr;
};

// What both encoders do.
class StreamEncoder {
public:
    StreamEncoder() = default;
    ~StreamEncoder();
    StreamEncoder(const StreamEncoder&) = delete;
    StreamEncoder& operator=(const StreamEncoder&) = delete;

    // The packets that are still to come.
    [[nodiscard]] bool Flush(VideoContainer& container, std::string& error);

protected:
    [[nodiscard]] bool Make(const char* encoder, std::string& error);
    [[nodiscard]] bool AddTo(VideoContainer& container, const char* preset, const char* quality,
                             std::string& error);
    // Null: the end.
    [[nodiscard]] bool Encode(VideoContainer& container, const AVFrame* of, std::string& error);

    AVCodecContext* context = nullptr;
    AVStream* stream = nullptr;
    AVFrame* frame = nullptr;
    AVPacket* packet = nullptr;
};

struct PICTURE_STREAM {
    const char* encoder = "";
    bool lossless = false;
    uint32_t width = 0; // pixels
    uint32_t height = 0;
    uint32_t rateNumber = 60;
    uint32_t rateDivisor = 1;
    double dotAspect = 1.0; // width to height of a pixel on a display
};

class PictureEncoder : public StreamEncoder {
public:
    ~PictureEncoder();
    [[nodiscard]] bool Open(VideoContainer& container, const PICTURE_STREAM& wanted,
                            std::string& error);
    // A picture, for Send: each pixel of the stream is that of the nearest dot.
    [[nodiscard]] bool Convert(const uint32_t* pixels, uint32_t width, uint32_t height,
                               std::string& error);
    [[nodiscard]] bool Send(VideoContainer& container, int64_t number, std::string& error);

private:
    [[nodiscard]] bool SplitColours(const uint32_t* pixels, int width, int height,
                                    std::string& error);

    SwsContext* colours = nullptr;
    AVFrame* dots = nullptr; // brightness and the two colours of each dot
};

class SoundEncoder : public StreamEncoder {
public:
    // `framePairs`: how many pairs a frame has if the encoder does not mind.
    [[nodiscard]] bool Open(VideoContainer& container, const char* encoder, uint32_t rate,
                            int framePairs, std::string& error);
    [[nodiscard]] int FramePairs() const { return pairs; }
    [[nodiscard]] bool Send(VideoContainer& container, const int16_t* samples, size_t count,
                            std::string& error);

private:
    int pairs = 0;
    int64_t sent = 0;
};
