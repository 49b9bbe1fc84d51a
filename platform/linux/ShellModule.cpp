#include "platform/ShellModule.h"

#include <array>
#include <dlfcn.h>
#include <filesystem>

namespace vantry {

Result<void*> loadShellSymbol(const std::string& symbol) {
    std::error_code failure;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure)
        return std::unexpected(errorFromErrno(failure.value(), "/proc/self/exe"));
    const auto folder = executable.parent_path();
    const std::array candidates{folder / OMBREL_SHELL_MODULE,
                                folder / OMBREL_RELATIVE_MODULE_FOLDER / OMBREL_SHELL_MODULE};

    std::string reasons;
    for (const auto& candidate : candidates) {
        if (!std::filesystem::exists(candidate, failure))
            continue;
        void* module = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
        void* address = module ? dlsym(module, symbol.c_str()) : nullptr;
        if (address)
            return address;
        reasons = dlerror();
    }
    if (reasons.empty())
        return std::unexpected(Error{ErrorKind::notFound, OMBREL_SHELL_MODULE " is not installed"});
    return std::unexpected(Error{ErrorKind::system, reasons});
}

} // namespace vantry
