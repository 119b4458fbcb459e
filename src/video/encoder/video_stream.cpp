#include "video/encoder/video_stream.h"

// FFmpeg's headers are C, and convert as C does.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wold-style-cast"
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}
#pragma GCC diagnostic pop

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

constexpr int kMostAspect = 10000; // of the two numbers that an aspect is written as
constexpr int kMatrixBt709 = 1;    // the colours of television in high definition

std::string ErrorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

bool Good(int code, std::string& error) {
    if (code < 0) {
        error = ErrorText(code);
    }
    return code >= 0;
}

// Rows of values, `stride` bytes from one to the next.
template <typename Byte>
struct PLANE {
    Byte* bytes;
    size_t width;
    size_t height;
    size_t stride;
};

// Each value is that of the nearest one in `from`.
template <typename Value>
void Enlarge(const PLANE<const uint8_t>& from, const PLANE<uint8_t>& to) {
    uint8_t* out = to.bytes;
    size_t rowBefore = SIZE_MAX;
    for (size_t y = 0; y < to.height; ++y, out += to.stride) {
        const size_t row = y * from.height / to.height;
        if (row == rowBefore) {
            std::memcpy(out, out - to.stride, to.width * sizeof(Value));
            continue;
        }
        rowBefore = row;
        const uint8_t* const in = from.bytes + row * from.stride;
        for (size_t x = 0; x < to.width; ++x) {
            std::memcpy(out + x * sizeof(Value), in + x * from.width / to.width * sizeof(Value),
                        sizeof(Value));
        }
    }
}

} // namespace

VideoContainer::~VideoContainer() {
    if (context != nullptr) {
        avio_closep(&context->pb);
        avformat_free_context(context);
    }
}

bool VideoContainer::Create(const std::string& path, const char* kind, std::string& error) {
    av_log_set_level(AV_LOG_ERROR); // its words about what goes well are not for the player
    return Good(avformat_alloc_output_context2(&context, nullptr, kind, path.c_str()), error) &&
           Good(avio_open(&context->pb, path.c_str(), AVIO_FLAG_WRITE), error);
}

bool VideoContainer::Begin(std::string& error) {
    return Good(avformat_write_header(context, nullptr), error);
}

bool VideoContainer::End(std::string& error) {
    return Good(av_write_trailer(context), error) && Good(avio_closep(&context->pb), error);
}

StreamEncoder::~StreamEncoder() {
    avcodec_free_context(&context);
    av_frame_free(&frame);
    av_packet_free(&packet);
}

bool StreamEncoder::Make(const char* encoder, std::string& error) {
    const AVCodec* const codec = avcodec_find_encoder_by_name(encoder);
    if (codec == nullptr) {
        error = std::string("this system's FFmpeg has no encoder ") + encoder;
        return false;
    }
    context = avcodec_alloc_context3(codec);
    frame = av_frame_alloc();
    packet = av_packet_alloc();
    if (context == nullptr || frame == nullptr || packet == nullptr) {
        error = ErrorText(AVERROR(ENOMEM));
        return false;
    }
    return true;
}

bool StreamEncoder::AddTo(VideoContainer& container, const char* preset, const char* quality,
                          std::string& error) {
    if (preset != nullptr) {
        av_opt_set(context->priv_data, "preset", preset, 0);
        av_opt_set(context->priv_data, "crf", quality, 0);
    }
    if ((container.Context()->oformat->flags & AVFMT_GLOBALHEADER) != 0) {
        context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    if (!Good(avcodec_open2(context, nullptr, nullptr), error)) {
        return false;
    }
    stream = avformat_new_stream(container.Context(), nullptr);
    if (stream == nullptr) {
        error = ErrorText(AVERROR(ENOMEM));
        return false;
    }
    stream->time_base = context->time_base;
    stream->sample_aspect_ratio = context->sample_aspect_ratio;
    stream->avg_frame_rate = context->framerate;
    stream->r_frame_rate = context->framerate;
    return Good(avcodec_parameters_from_context(stream->codecpar, context), error);
}

bool StreamEncoder::Encode(VideoContainer& container, const AVFrame* of, std::string& error) {
    int code = avcodec_send_frame(context, of);
    while (code >= 0) {
        code = avcodec_receive_packet(context, packet);
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) {
            return true;
        }
        if (code >= 0) {
            packet->duration = packet->duration > 0 ? packet->duration : 1; // of a picture
            av_packet_rescale_ts(packet, context->time_base, stream->time_base);
            packet->stream_index = stream->index;
            code = av_interleaved_write_frame(container.Context(), packet);
        }
    }
    return Good(code, error);
}

bool StreamEncoder::Flush(VideoContainer& container, std::string& error) {
    return Encode(container, nullptr, error);
}

PictureEncoder::~PictureEncoder() {
    sws_freeContext(colours);
    av_frame_free(&dots);
}

bool PictureEncoder::Open(VideoContainer& container, const PICTURE_STREAM& wanted,
                          std::string& error) {
    if (!Make(wanted.encoder, error)) {
        return false;
    }
    context->width = static_cast<int>(wanted.width);
    context->height = static_cast<int>(wanted.height);
    context->framerate = {static_cast<int>(wanted.rateNumber),
                          static_cast<int>(wanted.rateDivisor)};
    context->time_base = av_inv_q(context->framerate);
    context->sample_aspect_ratio = av_d2q(wanted.dotAspect, kMostAspect);
    context->pix_fmt = wanted.lossless ? AV_PIX_FMT_0RGB32 : AV_PIX_FMT_YUV420P;
    // The pictures of two seconds, so that a player finds its way.
    context->gop_size = wanted.lossless ? 1 : 120;
    if (!wanted.lossless) {
        context->profile = FF_PROFILE_H264_HIGH;
        context->color_range = AVCOL_RANGE_MPEG;
        context->colorspace = AVCOL_SPC_BT709;
        context->color_primaries = AVCOL_PRI_BT709;
        context->color_trc = AVCOL_TRC_BT709;
    }
    context->thread_count = wanted.lossless ? 1 : 0; // as many as processors
    // At this quality the steps of the encoder are finer than those of its colours.
    if (!AddTo(container, wanted.lossless ? nullptr : "superfast", "10", error)) {
        return false;
    }
    frame->format = context->pix_fmt;
    frame->width = context->width;
    frame->height = context->height;
    if (!Good(av_frame_get_buffer(frame, 0), error)) {
        return false;
    }
    dots = av_frame_alloc();
    return dots != nullptr;
}

// The dots' own conversion, before they are enlarged: there are far fewer of them than of the stream's pixels.
bool PictureEncoder::SplitColours(const uint32_t* pixels, int width, int height,
                                  std::string& error) {
    if (dots->width != width || dots->height != height) {
        av_frame_unref(dots);
        dots->format = AV_PIX_FMT_YUV444P;
        dots->width = width;
        dots->height = height;
        if (!Good(av_frame_get_buffer(dots, 0), error)) {
            return false;
        }
        sws_freeContext(colours);
        colours =
            sws_getContext(width, height, AV_PIX_FMT_0RGB32, width, height, AV_PIX_FMT_YUV444P,
                           SWS_POINT | SWS_ACCURATE_RND, nullptr, nullptr, nullptr);
        if (colours == nullptr) {
            error = ErrorText(AVERROR(ENOMEM));
            return false;
        }
        const int* const matrix = sws_getCoefficients(kMatrixBt709);
        sws_setColorspaceDetails(colours, matrix, 1, matrix, 0, 0, 1 << 16, 1 << 16);
    }
    const uint8_t* const planes[4] = {reinterpret_cast<const uint8_t*>(pixels), nullptr, nullptr,
                                      nullptr};
    const int strides[4] = {width * 4, 0, 0, 0};
    return Good(sws_scale(colours, planes, strides, 0, height, dots->data, dots->linesize), error);
}

bool PictureEncoder::Convert(const uint32_t* pixels, uint32_t width, uint32_t height,
                             std::string& error) {
    // The encoder may still hold the picture before.
    if (!Good(av_frame_make_writable(frame), error)) {
        return false;
    }
    const auto wide = static_cast<size_t>(context->width);
    const auto high = static_cast<size_t>(context->height);
    if (frame->format == AV_PIX_FMT_0RGB32) {
        Enlarge<uint32_t>({reinterpret_cast<const uint8_t*>(pixels), width, height, width * 4},
                          {frame->data[0], wide, high, static_cast<size_t>(frame->linesize[0])});
        return true;
    }
    if (!SplitColours(pixels, static_cast<int>(width), static_cast<int>(height), error)) {
        return false;
    }
    for (size_t plane = 0; plane < 3; ++plane) {
        const size_t part = plane == 0 ? 1 : 2; // the colours have half as many pixels each way
        Enlarge<uint8_t>(
            {dots->data[plane], width, height, static_cast<size_t>(dots->linesize[plane])},
            {frame->data[plane], wide / part, high / part,
             static_cast<size_t>(frame->linesize[plane])});
    }
    return true;
}

bool PictureEncoder::Send(VideoContainer& container, int64_t number, std::string& error) {
    frame->pts = number;
    return Encode(container, frame, error);
}

bool SoundEncoder::Open(VideoContainer& container, const char* encoder, uint32_t rate,
                        int framePairs, std::string& error) {
    if (!Make(encoder, error)) {
        return false;
    }
    const bool planar = context->codec->sample_fmts != nullptr &&
                        context->codec->sample_fmts[0] == AV_SAMPLE_FMT_FLTP;
    context->sample_fmt = planar ? AV_SAMPLE_FMT_FLTP : AV_SAMPLE_FMT_S16;
    context->sample_rate = static_cast<int>(rate);
    context->time_base = {1, static_cast<int>(rate)};
    context->bit_rate = planar ? 256000 : 0;
    av_channel_layout_default(&context->ch_layout, 2);
    if (!AddTo(container, nullptr, nullptr, error)) {
        return false;
    }
    pairs = context->frame_size > 0 ? context->frame_size : framePairs;
    frame->format = context->sample_fmt;
    frame->nb_samples = pairs;
    frame->sample_rate = context->sample_rate;
    return Good(av_channel_layout_copy(&frame->ch_layout, &context->ch_layout), error) &&
           Good(av_frame_get_buffer(frame, 0), error);
}

bool SoundEncoder::Send(VideoContainer& container, const int16_t* samples, size_t count,
                        std::string& error) {
    frame->nb_samples = pairs;
    if (!Good(av_frame_make_writable(frame), error)) {
        return false;
    }
    if (context->sample_fmt == AV_SAMPLE_FMT_S16) {
        std::copy(samples, samples + count * 2, reinterpret_cast<int16_t*>(frame->data[0]));
    } else {
        for (size_t i = 0; i < count * 2; ++i) {
            reinterpret_cast<float*>(frame->data[i % 2])[i / 2] =
                static_cast<float>(samples[i]) / 32768.0f;
        }
    }
    frame->nb_samples = static_cast<int>(count);
    frame->pts = sent;
    sent += frame->nb_samples;
    return Encode(container, frame, error);
}
