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
    /// `pressed` gets the released mouse button, if it is known.
    explicit StatusItem(std::function<void(std::optional<MouseEvent>)> pressed);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    ~StatusItem();

    void setContent(const StatusItemContent& content);
    /// The anchor of the popover and the menu; nil when the system gave the item no button.
    [[nodiscard]] NSView* button() const;

private:
    OmbrelStatusItemTarget* target_;
    OmbrelBarView* barView_;
    NSStatusItem* item_;
    std::unique_ptr<MouseMonitor> rightClicks_;
};

} // namespace vantry
