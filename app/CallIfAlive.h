#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace vantry {

/// Calls a member function of `object`; does nothing when the object is gone.
template <class Object, class Action, class... Arguments>
void callIfAlive(const std::weak_ptr<Object>& object, Action action, Arguments&&... arguments) {
    if (const auto target = object.lock())
        std::invoke(action, *target, std::forward<Arguments>(arguments)...);
}

} // namespace vantry
