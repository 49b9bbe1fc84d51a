#include "platform/apple/Services.h"

#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>

namespace vantry {

namespace {

class UserDefaultsStore : public PreferencesStore {
public:
    bool boolForKey(std::string_view key) const override {
        @autoreleasepool {
            NSString* name = foundationText(key);
            return name && [[NSUserDefaults standardUserDefaults] boolForKey:name];
        }
    }
    // Not `stringForKey:`, which converts numbers to text.
    std::optional<std::string> stringForKey(std::string_view key) const override {
        @autoreleasepool {
            NSString* name = foundationText(key);
            id value = name ? [[NSUserDefaults standardUserDefaults] objectForKey:name] : nil;
            if (![value isKindOfClass:[NSString class]])
                return std::nullopt;
            return textFromFoundation(value);
        }
    }
    void setBool(std::string_view key, bool value) override {
        @autoreleasepool {
            if (NSString* name = foundationText(key))
                [[NSUserDefaults standardUserDefaults] setBool:value forKey:name];
        }
    }
    void setString(std::string_view key, std::string_view value) override {
        @autoreleasepool {
            NSString* name = foundationText(key);
            NSString* text = foundationText(value);
            if (name && text)
                [[NSUserDefaults standardUserDefaults] setObject:text forKey:name];
        }
    }
};

} // namespace

std::shared_ptr<PreferencesStore> makePreferencesStore() { return std::make_shared<UserDefaultsStore>(); }

} // namespace vantry
