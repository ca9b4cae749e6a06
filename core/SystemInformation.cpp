#include "core/SystemInformation.h"

#include "platform/Paths.h"

namespace orvane {

namespace {

constexpr char kToolKey[] = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
constexpr char kFolderKey[] = "SOFTWARE\\Microsoft\\Shared Tools Location";
constexpr char kToolName[] = "\\MSINFO32.EXE";

/// Empty when the registry names none. Only a path made from the folder is looked at: a program
/// that the registry names in full shows whether it is there when it is started.
std::filesystem::path toolPath(const SystemInfo& info) {
    const std::string tool = info.GetKeyValue(kToolKey, "PATH");
    if (!tool.empty()) return pathFromUtf8(tool);
    const std::string folder = info.GetKeyValue(kFolderKey, "MSINFO");
    if (folder.empty()) return {};
    std::filesystem::path path = pathFromUtf8(folder + kToolName);
    return info.fileExists(path) ? path : std::filesystem::path();
}

} // namespace

Task<> startSystemInformation(SystemInfo& info, Operator& op) {
    const std::filesystem::path tool = toolPath(info);
    if (!tool.empty() && info.start(tool)) co_return;
    std::string message = "At present, system information cannot be used.";
    Task<> telling = op.tell(std::move(message));
    co_await telling;
}

} // namespace orvane
