#include <cstdlib>
#include <gtest/gtest.h>

namespace vantry {

namespace {

// Figures and times follow the user's locale and time zone, so the tests set both.
class PlainEnvironment : public testing::Environment {
public:
    void SetUp() override {
        setenv("LC_ALL", "C", 1);
        setenv("TZ", "UTC", 1);
    }
};

[[maybe_unused]] const auto* const environment = testing::AddGlobalTestEnvironment(new PlainEnvironment);

} // namespace

} // namespace vantry
