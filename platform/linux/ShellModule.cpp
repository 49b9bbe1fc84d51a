#include "platform/ShellModule.h"

#include <array>
#include <dlfcn.h>
#include <filesystem>

namespace vantry {

Result<void*> loadModuleSymbol(const std::string& module, const std::string& symbol) {
    std::error_code failure;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure)
        return std::unexpected(errorFromErrno(failure.value(), "/proc/self/exe"));
    const auto folder = executable.parent_path();
    const std::array candidates{folder / module, folder / OMBREL_RELATIVE_MODULE_FOLDER / module};

    std::string reasons;
    for (const auto& candidate : candidates) {
        if (!std::filesystem::exists(candidate, failure))
            continue;
        void* loaded = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
        void* address = loaded ? dlsym(loaded, symbol.c_str()) : nullptr;
        if (address)
            return address;
        reasons = dlerror();
    }
    if (reasons.empty())
        return std::unexpected(Error{ErrorKind::notFound, module + " is not installed"});
    return std::unexpected(Error{ErrorKind::system, reasons});
}

Result<void*> loadShellSymbol(const std::string& symbol) { return loadModuleSymbol("libombrel-qt.so", symbol); }

} // namespace vantry
