#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// What all fakes of a test were asked, in one order. An entry is the service, a dot, the operation and, after a space,
/// what it was given: "shell.openPopover", "loginItem.setEnabled true".
class FakeCallLog {
public:
    void add(std::string call) { calls_.push_back(std::move(call)); }
    void clear() { calls_.clear(); }

    [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }

    /// The entries of the named operations; a name with nothing after its dot stands for the whole service.
    [[nodiscard]] std::vector<std::string> only(std::initializer_list<std::string_view> names) const {
        std::vector<std::string> found;
        std::ranges::copy_if(calls_, std::back_inserter(found), [names](const std::string& call) {
            return std::ranges::any_of(names, [&call](std::string_view name) { return isOf(call, name); });
        });
        return found;
    }

    [[nodiscard]] std::size_t count(std::string_view name) const { return only({name}).size(); }

private:
    static bool isOf(std::string_view call, std::string_view name) {
        return call.starts_with(name) &&
               (name.ends_with('.') || call.size() == name.size() || call[name.size()] == ' ');
    }

    std::vector<std::string> calls_;
};

} // namespace vantry
