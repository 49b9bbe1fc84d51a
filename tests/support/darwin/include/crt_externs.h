#pragma once

#include <unistd.h>

/// environ(7): a library reaches the environment this way.
inline char*** _NSGetEnviron() { return &environ; }
