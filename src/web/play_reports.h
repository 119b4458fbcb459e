// PlayReports: tells the web service which games a member plays, on one set or several.
//
// A game is reported while somebody is logged in: its start, and its stop if the start was reported. The answers
// do not matter.
// Thread: main.
#pragma once

#include "web/service_texts.h"

#include <cstdint>
#include <map>
#include <string>

class DownloadQueue;

class PlayReports {
public:
    explicit PlayReports(DownloadQueue& downloads)
        : queue(downloads) {}

    // What is on a set in this round. `serial` is that of its session, 0 while there is none. True if a game's start
    // was reported.
    bool Note(const SERVICE_ADDRESSES& addresses, const MEMBER_CREDENTIALS& member, uint32_t key,
              uint32_t serial, uint32_t system, const std::wstring& game);
    // Everything stops.
    void StopAll(const SERVICE_ADDRESSES& addresses, const MEMBER_CREDENTIALS& member);

private:
    struct PLAYED {
        uint32_t serial;
        uint32_t system;
        std::wstring game;
        std::wstring token; // that the start was reported with; empty: it was not
    };
    void Stop(const SERVICE_ADDRESSES& addresses, const MEMBER_CREDENTIALS& member,
              const PLAYED& played);
    bool Send(const std::wstring& url); // false if there is no address

    DownloadQueue& queue;
    std::map<uint32_t, PLAYED> sets; // by session key
};
