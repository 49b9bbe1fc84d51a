#pragma once

#include <cstdint>

/// dyld(3): the path may be one of a link. When `*size` is too small, it becomes what is needed, and the result is -1.
extern "C" int _NSGetExecutablePath(char* path, std::uint32_t* size);
