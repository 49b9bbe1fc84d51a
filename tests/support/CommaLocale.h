#pragma once

#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#ifdef OMBREL_ADDRESS_SANITIZER
#include <sanitizer/lsan_interface.h>
#endif

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <locale>
#include <stdexcept>
#include <string>

namespace vantry {

/// Makes a locale with a decimal comma that of the C and of the C++ library until the end. On Linux it is compiled for
/// the test, so that it need not be installed.
class CommaLocale {
public:
    CommaLocale() {
        const std::string command =
            "localedef -i de_DE -f UTF-8 --no-archive " + (folder_ / name).native() + " >/dev/null 2>&1";
        // Its exit status tells of warnings too.
        [[maybe_unused]] const int status = std::system(command.c_str());
#ifdef OMBREL_ADDRESS_SANITIZER
        const __lsan::ScopedDisabler disabler; // the C library never lets go of what it makes of $LOCPATH
#endif
        try {
            isSet_ = std::setlocale(LC_ALL, name) != nullptr;
            std::locale::global(std::locale(name));
        } catch (const std::runtime_error&) {
            isSet_ = false;
        }
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() {
        std::locale::global(std::locale::classic());
        std::setlocale(LC_ALL, "C");
    }

    /// False where there is no such locale.
    [[nodiscard]] bool isSet() const { return isSet_ && std::string(std::localeconv()->decimal_point) == ","; }

private:
    static constexpr const char* name = "de_DE.UTF-8";

    TemporaryFolder folder_;
    ScopedEnvironment locales_{"LOCPATH", folder_.path().c_str()};
    bool isSet_ = false;
};

} // namespace vantry
