#include "cleanup/measuring/WorkerPayload.h"

#include "base/Base64.h"
#include "base/Utf8.h"
#include "cleanup/measuring/JsonObjectReader.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

namespace vantry {

namespace {

using OrderedJson = nlohmann::ordered_json;

constexpr const char* sizeKey = "size";
constexpr const char* newestKey = "newestModificationTime";
constexpr const char* completeKey = "complete";
constexpr const char* namesKey = "names";
constexpr const char* encodedNamesKey = "encodedNames";

bool canBeInAFolder(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

class MetricsReader : public JsonObjectReader<MetricsReader> {
public:
    using JsonObjectReader::take;
    DirectoryMetricsPayload payload;

    bool take(const std::string& key, bool value) {
        payload.complete = value;
        return key == completeKey;
    }
    bool take(const std::string& key, std::int64_t value) {
        if (key == newestKey)
            return take(key, static_cast<double>(value));
        payload.size = value;
        return key == sizeKey && value >= 0;
    }
    bool take(const std::string& key, double value) {
        payload.newestModificationTime = value;
        return key == newestKey && timeFromSecondsSince1970(value);
    }
    [[nodiscard]] bool isWhole() const { return has(sizeKey) && has(completeKey); }
};

class ChildrenReader : public JsonObjectReader<ChildrenReader> {
public:
    using JsonObjectReader::take;
    ShallowChildrenPayload payload;

    bool take(const std::string& key, bool value) {
        payload.complete = value;
        return key == completeKey;
    }
    static bool takeArray(const std::string& key) { return key == namesKey || key == encodedNamesKey; }
    bool takeElement(const std::string& key, std::string value) {
        if (key == encodedNamesKey) {
            auto bytes = bytesOfBase64(value);
            if (!bytes || isUtf8(*bytes))
                return false;
            value = std::move(*bytes);
            hasEncodedNames_ = true;
        }
        if (!canBeInAFolder(value))
            return false;
        payload.names.push_back(std::move(value));
        return true;
    }
    [[nodiscard]] bool isWhole() const {
        return has(namesKey) && has(completeKey) && has(encodedNamesKey) == hasEncodedNames_;
    }

private:
    bool hasEncodedNames_ = false;
};

} // namespace

std::string encoded(const DirectoryMetricsPayload& payload) {
    OrderedJson object{{sizeKey, payload.size}};
    if (payload.newestModificationTime)
        object[newestKey] = *payload.newestModificationTime;
    object[completeKey] = payload.complete;
    return object.dump();
}

std::string encoded(const ChildrenMetricsPayload& payload) {
    std::string text;
    for (const auto& [name, metrics] : payload.children)
        text += base64Text(name) + ' ' + encoded(metrics) + '\n';
    return text + encoded(payload.whole);
}

std::string encoded(const ShallowChildrenPayload& payload) {
    OrderedJson names = OrderedJson::array();
    OrderedJson encodedNames = OrderedJson::array();
    for (const auto& name : payload.names)
        if (isUtf8(name))
            names.push_back(name);
        else
            encodedNames.push_back(base64Text(name));
    OrderedJson object{{namesKey, std::move(names)}, {completeKey, payload.complete}};
    if (!encodedNames.empty())
        object[encodedNamesKey] = std::move(encodedNames);
    return object.dump();
}

std::optional<DirectoryMetricsPayload> decodedDirectoryMetrics(std::string_view json) {
    MetricsReader reader;
    if (!reader.reads(json))
        return std::nullopt;
    return reader.payload;
}

std::optional<ChildrenMetricsPayload> decodedChildrenMetrics(std::string_view text) {
    ChildrenMetricsPayload payload;
    for (auto end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        const auto line = text.substr(0, end);
        text.remove_prefix(end + 1);
        const auto space = line.find(' ');
        const auto name = bytesOfBase64(line.substr(0, space));
        const auto metrics = decodedDirectoryMetrics(line.substr(space + 1)); // without a space, of the name
        if (!name || !canBeInAFolder(*name) || !metrics || !payload.children.emplace(*name, *metrics).second)
            return std::nullopt;
    }
    const auto whole = decodedDirectoryMetrics(text);
    if (!whole)
        return std::nullopt;
    payload.whole = *whole;
    return payload;
}

std::optional<ShallowChildrenPayload> decodedShallowChildren(std::string_view json) {
    ChildrenReader reader;
    if (!reader.reads(json))
        return std::nullopt;
    return std::move(reader.payload);
}

// The whole seconds on either side of 1970 that `SystemTime` can hold, less one for rounding.
constexpr double largestSeconds = 9'223'372'035;

// A double cannot hold a count of nanoseconds, so whole seconds and the rest are converted separately.
double secondsSince1970(SystemTime time) {
    const auto whole = std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch());
    const std::chrono::duration<double> rest = time.time_since_epoch() - whole;
    const double seconds = static_cast<double>(whole.count()) + rest.count();
    return std::clamp(seconds, -largestSeconds, largestSeconds);
}

std::optional<SystemTime> timeFromSecondsSince1970(double seconds) {
    if (!(std::abs(seconds) <= largestSeconds))
        return std::nullopt;
    const double whole = std::floor(seconds);
    return SystemTime(std::chrono::seconds(static_cast<std::int64_t>(whole)) +
                      std::chrono::round<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds - whole)));
}

} // namespace vantry
