#include "app/LaunchAtLoginController.h"

#include "base/AtomicFile.h"
#include "platform/LoginItem.h"
#include "platform/PropertyList.h"
#include "platform/UserSession.h"

#include <cerrno>
#include <optional>
#include <unistd.h>
#include <utility>

namespace vantry::LaunchAtLoginController {

namespace {

constexpr mode_t readableByAll = 0644;
constexpr std::size_t largestAgent = 1 << 20;

bool fileExists(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored) && !std::filesystem::is_directory(path, ignored);
}

Result<void> writeWithFolder(const std::filesystem::path& file, const std::string& contents) {
    std::error_code failure;
    std::filesystem::create_directories(file.parent_path(), failure);
    if (failure)
        return std::unexpected(errorFromErrno(failure.value(), file.parent_path().native()));
    return writeFileAtomically(file, contents, readableByAll);
}

// Only ever the file itself: a folder in its place stays.
Result<void> removeFile(const std::filesystem::path& file) {
    if (fileExists(file) && unlink(file.c_str()) != 0 && errno != ENOENT)
        return std::unexpected(errorFromErrno(errno, file.native()));
    return {};
}

std::filesystem::path applicationToStart(const Environment& environment) {
    std::error_code ignored;
    return std::filesystem::is_directory(environment.installedApplication, ignored) ? environment.installedApplication
                                                                                    : environment.runningApplication;
}

PropertyList launchAgent(const std::filesystem::path& application) {
    using List = PropertyList;
    return {List::Dictionary{
        {"Label", {std::string(label)}},
        {"ProgramArguments",
         {List::Array{{std::string("/usr/bin/open")}, {std::string("-g")}, {application.native()}}}},
        {"RunAtLoad", {true}},
        {"LimitLoadToSessionType", {std::string("Aqua")}},
        {"ProcessType", {std::string("Interactive")}},
    }};
}

// Both files or neither: when the second step fails, the first is undone.

Result<void> enable(const Environment& environment) {
    const auto agent = launchAgentURL(environment);
    const auto application = applicationToStart(environment);
    const auto xml = xmlPropertyList(launchAgent(application));
    if (!xml)
        return std::unexpected(xml.error());
    const auto autostart = autostartFile(label);
    if (!autostart)
        return writeWithFolder(agent, *xml);

    const auto entry = autostartEntry(label, application);
    if (!entry)
        return std::unexpected(entry.error());
    std::optional<std::string> agentBefore;
    if (fileExists(agent)) {
        auto bytes = readSmallFile(agent, largestAgent);
        if (!bytes)
            return std::unexpected(bytes.error());
        agentBefore = std::move(*bytes);
    }
    if (const auto written = writeWithFolder(agent, *xml); !written)
        return written;
    const auto written = writeWithFolder(*autostart, *entry);
    if (!written)
        std::ignore = agentBefore ? writeWithFolder(agent, *agentBefore) : removeFile(agent);
    return written;
}

Result<void> disable(const Environment& environment) {
    const auto autostart = autostartFile(label);
    const bool hadAutostart = autostart && fileExists(*autostart);
    if (hadAutostart)
        if (const auto removed = removeFile(*autostart); !removed)
            return removed;
    const auto removed = removeFile(launchAgentURL(environment));
    if (!removed && hadAutostart)
        if (const auto entry = autostartEntry(label, applicationToStart(environment)))
            std::ignore = writeWithFolder(*autostart, *entry);
    return removed;
}

} // namespace

Result<Environment> currentEnvironment() {
    auto home = homeFolder();
    if (!home)
        return std::unexpected(home.error());
    auto application = runningApplicationPath();
    if (!application)
        return std::unexpected(application.error());
    return Environment{.home = std::move(*home), .runningApplication = std::move(*application)};
}

std::filesystem::path launchAgentURL(const Environment& environment) {
    return environment.home / "Library" / "LaunchAgents" / (std::string(label) + ".plist");
}

bool isEnabled(const Environment& environment) { return fileExists(launchAgentURL(environment)); }

Result<void> setEnabled(const Environment& environment, bool enabled) {
    return enabled ? enable(environment) : disable(environment);
}

Result<void> refreshIfEnabled(const Environment& environment) {
    return isEnabled(environment) ? setEnabled(environment, true) : Result<void>{};
}

} // namespace vantry::LaunchAtLoginController
