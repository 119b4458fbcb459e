#include "video/encoder/video_stream.h"
#include "video/video_file.h"

#include <algorithm>
#include <vector>

namespace {

constexpr uint32_t kMostSide = 1024; // of a picture, in dots
constexpr int kSoundFrame = 4096;    // pairs, for encoders without a size of their own

std::string Extension(const std::string& path) {
    const size_t dot = path.find_last_of("./\\");
    std::string extension =
        dot == std::string::npos || path[dot] != '.' ? std::string() : path.substr(dot + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return extension;
}

class VideoFile final : public CVideoFile {
public:
    ~VideoFile() override {
        std::string ignored;
        static_cast<void>(Close(ignored));
    }

    bool Open(const std::string& path, const VIDEO_FORMAT& wanted, std::string& error) override {
        format = wanted;
        name = path;
        const std::string extension = Extension(path);
        const bool matroska = extension == "mkv";
        if (!matroska && extension != "mp4") {
            error = path + ": a video's name ends in .mkv or .mp4";
            return false;
        }
        if (format.form == VideoForm::kLossless && !matroska) {
            error = path + ": a lossless video's name ends in .mkv";
            return false;
        }
        if (format.width == 0 || format.height == 0 || format.width > kMostSide ||
            format.height > kMostSide || format.rateNumber == 0 || format.rateDivisor == 0 ||
            (format.dotPixels != 2 && format.dotPixels != 4)) {
            error = path + ": a video cannot have pictures of this size or rate";
            return false;
        }
        scale = format.form == VideoForm::kLossless ? 1 : format.dotPixels;
        error = path + ": ";
        std::string reason;
        if (!container.Create(path, matroska ? "matroska" : "mp4", reason) ||
            !OpenPictures(reason) || !OpenSound(matroska, reason) || !container.Begin(reason)) {
            error += reason;
            return false;
        }
        error.clear();
        open = true;
        return true;
    }

    bool AddPicture(const uint32_t* pixels, uint32_t width, uint32_t height,
                    std::string& error) override {
        if (!open || width == 0 || height == 0) {
            error = name + ": no picture can be added";
            return false;
        }
        return Done(picture.Convert(pixels, width, height, error) && Send(error), error);
    }

    bool RepeatPicture(std::string& error) override { return open && Done(Send(error), error); }

    bool AddSound(const int16_t* samples, uint32_t pairs, std::string& error) override {
        if (!open) {
            return false;
        }
        waiting.insert(waiting.end(), samples, samples + size_t{pairs} * 2);
        return Done(SendSound(false, error), error);
    }

    bool Close(std::string& error) override {
        if (!open) {
            return true;
        }
        open = false;
        std::string reason;
        const bool whole = SendSound(true, reason) && picture.Flush(container, reason) &&
                           sound.Flush(container, reason) && container.End(reason);
        if (!Done(whole, reason)) {
            error = reason;
        }
        return whole;
    }

private:
    [[nodiscard]] bool Done(bool done, std::string& error) const {
        if (!done) {
            error = name + ": " + error;
        }
        return done;
    }

    bool OpenPictures(std::string& error) {
        const bool lossless = format.form == VideoForm::kLossless;
        PICTURE_STREAM stream;
        stream.encoder = lossless ? "ffv1" : "libx264";
        stream.lossless = lossless;
        stream.width = format.width * scale;
        stream.height = format.height * scale;
        stream.rateNumber = format.rateNumber;
        stream.rateDivisor = format.rateDivisor;
        stream.dotAspect = format.aspect > 0.0 ? format.aspect * format.height / format.width : 1.0;
        return picture.Open(container, stream, error);
    }

    bool OpenSound(bool matroska, std::string& error) {
        return sound.Open(container, matroska ? "flac" : "aac", format.sampleRate, kSoundFrame,
                          error);
    }

    bool Send(std::string& error) { return picture.Send(container, pictures++, error); }

    // Whole frames of the encoder; at the end also what is left.
    bool SendSound(bool rest, std::string& error) {
        const size_t step = static_cast<size_t>(sound.FramePairs()) * 2;
        size_t sent = 0;
        bool done = true;
        while (done && (waiting.size() - sent >= step || (rest && sent < waiting.size()))) {
            const size_t count = std::min(step, waiting.size() - sent);
            done = sound.Send(container, waiting.data() + sent, count / 2, error);
            sent += count;
        }
        waiting.erase(waiting.begin(), waiting.begin() + static_cast<ptrdiff_t>(sent));
        return done;
    }

    VIDEO_FORMAT format;
    std::string name;
    uint32_t scale = 1; // pixels of a dot in the file
    VideoContainer container;
    PictureEncoder picture;
    SoundEncoder sound;
    std::vector<int16_t> waiting; // samples for a whole frame of the encoder
    int64_t pictures = 0;
    bool open = false;
};

} // namespace

std::unique_ptr<CVideoFile> MakeVideoFile() {
    return std::make_unique<VideoFile>();
}
