#include "platform/ShellModule.h"

#include <dlfcn.h>

namespace vantry {

Result<void*> loadModuleSymbol(const std::string& /*module*/, const std::string& symbol) {
    if (void* address = dlsym(RTLD_MAIN_ONLY, symbol.c_str()))
        return address;
    return std::unexpected(Error{ErrorKind::notFound, symbol + " is missing"});
}

Result<void*> loadShellSymbol(const std::string& symbol) { return loadModuleSymbol({}, symbol); }

} // namespace vantry
