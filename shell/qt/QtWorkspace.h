#pragma once

#include "platform/Workspace.h"

#include <QByteArray>

namespace vantry {

/// The URI of a file by the bytes of its path, which need not be UTF-8. `path` is absolute.
[[nodiscard]] QByteArray fileUri(const std::filesystem::path& path);

/// The desktop session as Qt and D-Bus show it.
class QtWorkspace : public Workspace {
public:
    [[nodiscard]] std::unique_ptr<Subscription> observeWake(std::function<void()> block) override;
    void openURL(const std::string& url) override;
    [[nodiscard]] bool canOpenURL(const std::string& url) const override;
    void openSettingsPane(const std::string& url) override;
    void openItem(const std::filesystem::path& path) override;
    [[nodiscard]] bool canOpenItem(const std::filesystem::path& path) const override;
    void revealItem(const std::filesystem::path& path) override;
    void copyText(const std::string& text) override;
    [[nodiscard]] std::vector<std::string> runningBundleIdentifiers() const override;
    [[nodiscard]] std::vector<Screen> screens() const override;
    [[nodiscard]] std::optional<Screen> mainScreen() const override;
};

} // namespace vantry
