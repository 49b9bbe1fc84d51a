#include "platform/ShellModule.h"

#include <dlfcn.h>

namespace vantry {

Result<void*> loadModuleSymbol(const std::string& /*module*/, const std::string& symbol) {
    if (void* address = dlsym(RTLD_MAIN_ONLY, symbol.c_str()))
        return address;
    const char* reason = dlerror();
    return std::unexpected(Error{ErrorKind::notFound, reason ? reason : symbol + " is missing"});
}

Result<void*> loadShellSymbol(const std::string& symbol) { return loadModuleSymbol({}, symbol); }

} // namespace vantry
