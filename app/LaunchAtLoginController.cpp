#include "app/LaunchAtLoginController.h"

#include "base/AtomicFile.h"
#include "platform/LoginItem.h"
#include "platform/PropertyList.h"
#include "platform/UserSession.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <sys/stat.h>
#include <utility>

namespace vantry::LaunchAtLoginController {

namespace {

constexpr mode_t readableByAll = 0644;
constexpr std::size_t largestFile = 1 << 20;

bool fileExists(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored) && !std::filesystem::is_directory(path, ignored);
}

std::optional<std::string> bytesIfReadable(const std::filesystem::path& file) {
    auto bytes = readSmallFile(file, largestFile);
    return bytes ? std::optional(std::move(*bytes)) : std::nullopt;
}

// Unchanged files are not written again, because macOS may announce every write as a new background item.
Result<void> writeWithFolder(const std::filesystem::path& file, const std::string& contents) {
    std::error_code failure;
    if (std::filesystem::is_regular_file(std::filesystem::symlink_status(file, failure)) &&
        bytesIfReadable(file) == contents && chmod(file.c_str(), readableByAll) == 0)
        return {};
    std::filesystem::create_directories(file.parent_path(), failure);
    if (failure)
        return std::unexpected(errorFromErrno(failure.value(), file.parent_path().native()));
    return writeFileAtomically(file, contents, readableByAll);
}

// Removes a file only; a folder with that name stays.
Result<void> removeFile(const std::filesystem::path& file) {
    std::error_code failure;
    if (fileExists(file))
        std::filesystem::remove(file, failure);
    return failure ? Result<void>(std::unexpected(errorFromErrno(failure.value(), file.native()))) : Result<void>();
}

// The copies that may be started at login, the preferred one first; never empty. A copy elsewhere, in a build tree for
// instance, counts only if none is installed.
std::vector<std::filesystem::path> applicationsToStart(const Environment& environment) {
    std::vector<std::filesystem::path> applications;
    if (std::ranges::find(environment.installedApplications, environment.runningApplication) ==
        environment.installedApplications.end())
        std::ranges::copy_if(environment.installedApplications, std::back_inserter(applications), isApplication);
    if (applications.empty())
        applications.push_back(environment.runningApplication);
    return applications;
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

Result<void> writeAgent(const Environment& environment, const std::filesystem::path& application) {
    const auto xml = xmlPropertyList(launchAgent(application));
    if (!xml)
        return std::unexpected(xml.error());
    return writeWithFolder(launchAgentURL(environment), *xml);
}

// Both files or neither: when the second step fails, the first is undone.

Result<void> enable(const Environment& environment) {
    const auto agent = launchAgentURL(environment);
    const auto application = applicationsToStart(environment).front();
    const auto autostart = autostartFile(label);
    if (!autostart)
        return writeAgent(environment, application);

    const auto entry = autostartEntry(label, application);
    if (!entry)
        return std::unexpected(entry.error());
    std::optional<std::string> agentBefore;
    if (fileExists(agent)) {
        auto bytes = readSmallFile(agent, largestFile);
        if (!bytes)
            return std::unexpected(bytes.error());
        agentBefore = std::move(*bytes);
    }
    if (const auto written = writeAgent(environment, application); !written)
        return written;
    const auto written = writeWithFolder(*autostart, *entry);
    if (!written)
        std::ignore = agentBefore ? writeWithFolder(agent, *agentBefore) : removeFile(agent);
    return written;
}

Result<void> disable(const Environment& environment) {
    const auto autostart = autostartFile(label);
    const auto entryBefore = autostart ? bytesIfReadable(*autostart) : std::nullopt;
    if (autostart)
        if (const auto removed = removeFile(*autostart); !removed)
            return removed;
    const auto removed = removeFile(launchAgentURL(environment));
    if (!removed && entryBefore)
        std::ignore = writeWithFolder(*autostart, *entryBefore);
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
    return Environment{.home = std::move(*home),
                       .runningApplication = std::move(*application),
                       .installedApplications = installedApplicationPaths()};
}

std::filesystem::path launchAgentURL(const Environment& environment) {
    return environment.home / "Library" / "LaunchAgents" / (std::string(label) + ".plist");
}

bool isEnabled(const Environment& environment) {
    if (!fileExists(launchAgentURL(environment)))
        return false;
    const auto autostart = autostartFile(label);
    if (!autostart)
        return true;
    const auto entry = bytesIfReadable(*autostart);
    return entry && autostartEntryIsHonoured(*entry);
}

Result<void> setEnabled(const Environment& environment, bool enabled) {
    return enabled ? enable(environment) : disable(environment);
}

Result<void> refreshIfEnabled(const Environment& environment) {
    if (!isEnabled(environment))
        return {};
    if (const auto autostart = autostartFile(label))
        if (const auto entry = bytesIfReadable(*autostart))
            for (const auto& application : applicationsToStart(environment))
                if (autostartEntryStarts(*entry, application))
                    return writeAgent(environment, application);
    return enable(environment);
}

} // namespace vantry::LaunchAtLoginController
