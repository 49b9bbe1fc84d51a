// What most sources include, compiled once; see apple-check.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <expected>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <ranges>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <thread>
#include <variant>
#include <vector>
#ifdef APPLE_CHECK_TESTS
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#endif
#ifdef __OBJC__
#import <AppKit/AppKit.h>
#endif
