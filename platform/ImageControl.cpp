#include "platform/ImageControl.h"

#include "platform/Files.h"

namespace orvane {

Task<Fault> ImageControl::rewrite(std::filesystem::path from, std::filesystem::path to,
                                  Rewriting how) {
    Task<Fault> loading = load(std::move(from));
    Fault fault = co_await loading;
    if (fault) co_return fault;

    // From here to the call of `save` there is no wait: the picture in the control is still ours.
    if (how.mirror) mirror();
    if (!how.text.empty()) drawText(how.text);
    fault = makeFolder(to.parent_path());
    if (!fault) {
        Task<Fault> saving = save(std::move(to), how.format, how.factor, how.stamp);
        fault = co_await saving;
    }
    clear();
    co_return fault;
}

} // namespace orvane
