#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace vantry {

/// Sets one variable of the environment, or removes it with a null `value`, and puts the old one back at the end.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name))
            before_ = before;
        set(value);
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
    ~ScopedEnvironment() { set(before_ ? before_->c_str() : nullptr); }

private:
    void set(const char* value) {
        if (value)
            setenv(name_.c_str(), value, 1);
        else
            unsetenv(name_.c_str());
        tzset(); // the one variable that the C library reads at a time of its own choosing
    }

    std::string name_;
    std::optional<std::string> before_;
};

} // namespace vantry
