#include "app/StatusText.h"

#include "base/Format.h"
#include "platform/TextFormat.h"

#include <nlohmann/json.hpp>

namespace vantry {

std::string statusText(const StorageSnapshot& snapshot) {
    const auto row = [](const char* title, std::int64_t bytes, const std::string& more = "") {
        return formatted("{:<11}{:>10}  {:>20} bytes{}\n", title, byteCountText(bytes), bytes, more);
    };
    const std::string percent = percentText(snapshot.usedFraction()).value_or("—");
    return snapshot.volumeName + "\n" + row("Total", snapshot.totalBytes) +
           row("Used", snapshot.usedBytes(), "  " + percent) + row("Available", snapshot.availableBytes) +
           formatted("{:<11}{}\n", "Read", dateTimeText(snapshot.updatedAt));
}

std::string statusJson(const StorageSnapshot& snapshot) {
    nlohmann::ordered_json object{{"volumeName", snapshot.volumeName},
                                  {"totalBytes", snapshot.totalBytes},
                                  {"usedBytes", snapshot.usedBytes()},
                                  {"availableBytes", snapshot.availableBytes},
                                  {"totalText", byteCountText(snapshot.totalBytes)},
                                  {"usedText", byteCountText(snapshot.usedBytes())},
                                  {"availableText", byteCountText(snapshot.availableBytes)},
                                  {"usedFraction", snapshot.usedFraction()},
                                  {"updatedAt", iso8601Text(snapshot.updatedAt)}};
    if (snapshot.reservedBytes)
        object["reservedBytes"] = *snapshot.reservedBytes;
    return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

} // namespace vantry
