#include "screens/media_reader.h"

#include "base/helper_thread.h"

#include <mutex>
#include <utility>

MediaReader::MediaReader()
    : thread([this] { Run(); }) {}

MediaReader::~MediaReader() {
    {
        const std::scoped_lock hold(lock);
        end = true;
    }
    changed.notify_all();
    thread.join();
}

void MediaReader::Ask(std::string systemFolder, std::wstring contentKey) {
    {
        const std::scoped_lock hold(lock);
        question = {std::move(systemFolder), std::move(contentKey)};
        answer.reset();
        stale = true;
    }
    changed.notify_all();
}

void MediaReader::Forget() {
    const std::scoped_lock hold(lock);
    question.reset();
    answer.reset();
    stale = true;
}

std::optional<GAME_MEDIA> MediaReader::Take() {
    const std::scoped_lock hold(lock);
    return std::exchange(answer, std::nullopt);
}

void MediaReader::Wait() {
    std::unique_lock hold(lock);
    changed.wait(hold, [this] { return !question && !reading; });
}

void MediaReader::Run() {
    HelperBegins();
    std::unique_lock hold(lock);
    while (true) {
        changed.wait(hold, [this] { return end || question; });
        if (end) {
            return;
        }
        const QUESTION asked = *std::exchange(question, std::nullopt);
        reading = true;
        stale = false;
        hold.unlock();
        GAME_MEDIA found = ReadGameMedia(asked.systemFolder, asked.contentKey);
        hold.lock();
        reading = false;
        if (!stale) {
            answer = std::move(found);
        }
        changed.notify_all();
    }
}
