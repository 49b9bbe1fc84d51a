#pragma once

#include "platform/Workspace.h"

namespace vantry {

/// The desktop session as Qt and D-Bus show it.
class QtWorkspace : public Workspace {
public:
    [[nodiscard]] std::unique_ptr<Subscription> observeWake(std::function<void()> block) override;
    void openURL(const std::string& url) override;
    [[nodiscard]] std::vector<Screen> screens() const override;
    [[nodiscard]] std::optional<Screen> mainScreen() const override;
};

} // namespace vantry
