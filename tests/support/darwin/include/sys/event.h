#pragma once

#include <cstdint>
#include <ctime>

// kqueue(2): what this product asks for.

struct kevent {
    std::uintptr_t ident;
    std::int16_t filter;
    std::uint16_t flags;
    std::uint32_t fflags;
    std::intptr_t data;
    void* udata;
};

constexpr std::int16_t EVFILT_PROC = -5;
constexpr std::int16_t EVFILT_USER = -10;
constexpr std::uint16_t EV_ADD = 0x1;
constexpr std::uint32_t NOTE_TRIGGER = 0x01000000;
constexpr std::uint32_t NOTE_EXIT = 0x80000000;

#define EV_SET(event, a, b, c, d, e, f) (*(event) = {(a), (b), (c), (d), (e), (f)})

extern "C" int kqueue();
extern "C" int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events, int eventCount,
                      const timespec* timeout);
