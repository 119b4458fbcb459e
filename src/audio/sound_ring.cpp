#include "audio/sound_ring.h"

#include <algorithm>
#include <mutex>

SoundRing::SoundRing(uint32_t channelCount, uint32_t rate)
    : channels(channelCount)
    , frameBytes(channelCount * 2)
    , lengthBytes(std::max(rate, 1000u) * channelCount * 2)
    , bytesPerMs(std::max(rate, 1000u) * channelCount * 2 / 1000)
    , data(static_cast<size_t>(std::max(rate, 1000u)) * channelCount) {}

void SoundRing::Play() {
    const std::lock_guard guard(lock);
    if (!playing) {
        playing = true;
        takenBytes = 0;
        ++epochNumber;
    }
}

void SoundRing::Stop() {
    const std::lock_guard guard(lock);
    playing = false;
    takenBytes = 0;
    ++epochNumber;
}

void SoundRing::SetPosition(uint32_t position) {
    const std::lock_guard guard(lock);
    playPosition = Wrap(position);
    takenBytes = 0;
    ++epochNumber;
}

bool SoundRing::Playing() const {
    const std::lock_guard guard(lock);
    return playing;
}

SoundRing::CURSORS SoundRing::Cursors() const {
    const std::lock_guard guard(lock);
    return {playPosition, Wrap(uint64_t{playPosition} + std::max(takenBytes, reserveBytes))};
}

void SoundRing::Write(uint32_t position, std::span<const int16_t> samples) {
    const std::lock_guard guard(lock);
    const size_t start = Wrap(position) / 2;
    const size_t count = std::min(samples.size(), data.size()) / channels * channels;
    const size_t first = std::min(count, data.size() - start);
    std::copy_n(samples.begin(), first, data.begin() + static_cast<ptrdiff_t>(start));
    std::copy_n(samples.begin() + static_cast<ptrdiff_t>(first), count - first, data.begin());
}

void SoundRing::WriteSilence(uint32_t position, uint32_t bytes) {
    const std::lock_guard guard(lock);
    const size_t start = Wrap(position) / 2;
    const size_t count = std::min<size_t>(bytes / 2, data.size()) / channels * channels;
    const size_t first = std::min(count, data.size() - start);
    std::fill_n(data.begin() + static_cast<ptrdiff_t>(start), first, int16_t{0});
    std::fill_n(data.begin(), count - first, int16_t{0});
}

void SoundRing::Read(uint32_t position, std::span<int16_t> samples) const {
    const std::lock_guard guard(lock);
    CopyOut(position, samples);
}

void SoundRing::CopyOut(uint32_t position, std::span<int16_t> samples) const {
    size_t at = Wrap(position) / 2;
    for (size_t done = 0; done < samples.size();) {
        const size_t piece = std::min(samples.size() - done, data.size() - at);
        std::copy_n(data.begin() + static_cast<ptrdiff_t>(at), piece,
                    samples.begin() + static_cast<ptrdiff_t>(done));
        done += piece;
        at = 0;
    }
}

SoundRing::DEVICE_VIEW SoundRing::View() const {
    const std::lock_guard guard(lock);
    return {epochNumber, playing};
}

void SoundRing::SetReserveFrames(uint32_t frames) {
    const std::lock_guard guard(lock);
    // Half the ring is always left to the pump.
    reserveBytes = Wrap(std::min<uint64_t>(uint64_t{frames} * frameBytes, lengthBytes / 2));
}

bool SoundRing::Take(uint32_t epoch, std::span<int16_t> samples) {
    const std::lock_guard guard(lock);
    if (epoch != epochNumber || !playing) {
        std::fill(samples.begin(), samples.end(), int16_t{0});
        return false;
    }
    CopyOut(Wrap(uint64_t{playPosition} + takenBytes), samples);
    takenBytes += static_cast<uint32_t>(samples.size() * 2);
    return true;
}

void SoundRing::Heard(uint32_t epoch, uint32_t frames) {
    const std::lock_guard guard(lock);
    if (epoch != epochNumber) {
        return;
    }
    const auto bytes =
        static_cast<uint32_t>(std::min<uint64_t>(uint64_t{frames} * frameBytes, takenBytes));
    playPosition = Wrap(uint64_t{playPosition} + bytes);
    takenBytes -= bytes;
}
