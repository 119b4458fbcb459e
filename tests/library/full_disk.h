// A disk without room, while an object of this class lives.
#pragma once

#include <sys/resource.h>

#include <csignal>

// No file can grow beyond this many bytes, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes)
        : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit = {bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*handler)(int);
    rlimit before{};
};
