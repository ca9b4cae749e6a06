#include "tracker/PortSelection.h"

#include "platform/Conversions.h"

namespace orvane {

namespace {

constexpr const char* kSection = "Communication";
constexpr const char* kKey = "Port";

} // namespace

std::string storedPort(const SettingsStore& store) {
    return store.GetSetting(kSection, kKey, "1");
}

std::optional<int> PortSelection::storedIndex() const {
    const std::string port = storedPort(store_);
    if (port.size() != 1 || port[0] < '1' || port[0] > '4') return std::nullopt;
    return port[0] - '1';
}

Task<bool> PortSelection::confirm(std::optional<int> index) {
    const std::string chosen = index ? std::to_string(*index + 1) : storedPort(store_);
    if (link_.tryPort(toInt16(chosen).value_or(0))) {
        store_.SaveSetting(kSection, kKey, chosen);
        co_return true;
    }
    log_.write("ComPORT Setup ERROR");
    std::string message = "Port(COM):" + chosen + " is unusual. Please re-set up.";
    co_await op_.tell(std::move(message));
    co_return false;
}

} // namespace orvane
