#include "video/video_reader.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wold-style-cast"
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}
#pragma GCC diagnostic pop

namespace {

constexpr int kMatrixBt709 = 1;

// One stream's decoder.
class Decoder {
public:
    Decoder(AVFormatContext* file, AVMediaType type) {
        const AVCodec* codec = nullptr;
        index = av_find_best_stream(file, type, -1, -1, &codec, 0);
        if (index < 0) {
            return;
        }
        stream = file->streams[index];
        context = avcodec_alloc_context3(codec);
        if (avcodec_parameters_to_context(context, stream->codecpar) < 0 ||
            avcodec_open2(context, codec, nullptr) < 0) {
            avcodec_free_context(&context);
        }
    }
    ~Decoder() { avcodec_free_context(&context); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    // Null: the end.
    template <typename Take>
    void Decode(const AVPacket* packet, AVFrame* frame, const Take& take) {
        if (avcodec_send_packet(context, packet) < 0) {
            return;
        }
        while (avcodec_receive_frame(context, frame) >= 0) {
            take(*frame);
        }
    }

    int index = -1;
    AVStream* stream = nullptr;
    AVCodecContext* context = nullptr;
};

void TakePicture(const AVFrame& frame, const AVStream& stream, READ_VIDEO& video) {
    SwsContext* const colours = sws_getContext(
        frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), frame.width,
        frame.height, AV_PIX_FMT_0RGB32, SWS_POINT | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr,
        nullptr, nullptr);
    const int* const matrix = sws_getCoefficients(kMatrixBt709);
    sws_setColorspaceDetails(colours, matrix, 0, matrix, 1, 0, 1 << 16, 1 << 16);
    READ_PICTURE& picture = video.pictures.emplace_back();
    picture.pixels.resize(static_cast<size_t>(frame.width) * static_cast<size_t>(frame.height));
    uint8_t* const planes[4] = {reinterpret_cast<uint8_t*>(picture.pixels.data()), nullptr, nullptr,
                                nullptr};
    const int strides[4] = {frame.width * 4, 0, 0, 0};
    sws_scale(colours, frame.data, frame.linesize, 0, frame.height, planes, strides);
    sws_freeContext(colours);
    for (uint32_t& pixel : picture.pixels) {
        pixel &= 0xFFFFFF;
    }
    picture.seconds = static_cast<double>(frame.best_effort_timestamp) * av_q2d(stream.time_base);
}

void TakeSound(const AVFrame& frame, READ_VIDEO& video) {
    const int channels = frame.ch_layout.nb_channels;
    for (int i = 0; i < frame.nb_samples; ++i) {
        for (int channel = 0; channel < channels; ++channel) {
            if (frame.format == AV_SAMPLE_FMT_FLTP) {
                video.sound.push_back(reinterpret_cast<const float*>(frame.data[channel])[i]);
            } else {
                const auto* const samples = reinterpret_cast<const int16_t*>(frame.data[0]);
                video.sound.push_back(static_cast<float>(samples[i * channels + channel]) /
                                      32768.0f);
            }
        }
    }
}

void ReadAll(AVFormatContext* file, READ_VIDEO& video) {
    Decoder pictures(file, AVMEDIA_TYPE_VIDEO);
    Decoder sound(file, AVMEDIA_TYPE_AUDIO);
    if (pictures.context == nullptr || sound.context == nullptr) {
        return;
    }
    video.codec = avcodec_get_name(pictures.context->codec_id);
    video.pixelFormat = av_get_pix_fmt_name(pictures.context->pix_fmt);
    video.profile = pictures.context->profile;
    video.width = pictures.context->width;
    video.height = pictures.context->height;
    video.dotAspect = av_q2d(av_guess_sample_aspect_ratio(file, pictures.stream, nullptr));
    video.rate = av_q2d(pictures.stream->avg_frame_rate);
    video.seconds = static_cast<double>(file->duration) / AV_TIME_BASE;
    video.soundCodec = avcodec_get_name(sound.context->codec_id);
    video.soundRate = sound.context->sample_rate;
    video.channels = sound.context->ch_layout.nb_channels;
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    const auto takePicture = [&](const AVFrame& of) { TakePicture(of, *pictures.stream, video); };
    const auto takeSound = [&](const AVFrame& of) { TakeSound(of, video); };
    while (av_read_frame(file, packet) >= 0) {
        if (packet->stream_index == pictures.index) {
            pictures.Decode(packet, frame, takePicture);
        } else if (packet->stream_index == sound.index) {
            sound.Decode(packet, frame, takeSound);
        }
        av_packet_unref(packet);
    }
    pictures.Decode(nullptr, frame, takePicture);
    sound.Decode(nullptr, frame, takeSound);
    av_packet_free(&packet);
    av_frame_free(&frame);
}

} // namespace

bool ReadVideo(const std::string& path, READ_VIDEO& video) {
    av_log_set_level(AV_LOG_ERROR);
    AVFormatContext* file = nullptr;
    if (avformat_open_input(&file, path.c_str(), nullptr, nullptr) < 0) {
        return false;
    }
    const bool known = avformat_find_stream_info(file, nullptr) >= 0;
    if (known) {
        ReadAll(file, video);
    }
    avformat_close_input(&file);
    return known && !video.codec.empty();
}
