#pragma once

namespace vantry {

/// As long as it lives, keeps the repetitions of a held key from all windows of the application, for the keys that
/// press buttons and close windows: no question may be answered by a key that was already down when it appeared.
class KeyGuard {
public:
    KeyGuard();
    KeyGuard(const KeyGuard&) = delete;
    KeyGuard& operator=(const KeyGuard&) = delete;
    ~KeyGuard();

private:
    id monitor_;
};

} // namespace vantry
