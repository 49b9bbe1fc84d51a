#pragma once

#include "app/AppDelegate.h"
#include "app/StatusItemContent.h"

#include <functional>
#include <memory>
#include <optional>

@class NSStatusItem, NSView, OmbrelBarView, OmbrelStatusItemTarget;

namespace vantry {

class MouseMonitor;

/// The item in the menu bar: a button that hosts the bar.
class StatusItem {
public:
    /// `pressed` is told which button was released, if that is known.
    explicit StatusItem(std::function<void(std::optional<MouseEvent>)> pressed);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    ~StatusItem();

    void setContent(const StatusItemContent& content);
    /// Where the popover and the menu belong; nil when the system gave the item no button.
    [[nodiscard]] NSView* button() const;

private:
    OmbrelStatusItemTarget* target_;
    OmbrelBarView* barView_;
    NSStatusItem* item_;
    std::unique_ptr<MouseMonitor> rightClicks_;
};

} // namespace vantry
