// Feeds arbitrary search replies to the taking of a page's text and to a run against the camera's
// store.

#include "camera/ImageStore.h"
#include "platform/Page.h"
#include "tests/fuzz/Require.h"
#include "tests/support/Fakes.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/TempFolder.h"

#include <set>
#include <sstream>

namespace {

using namespace orvane;
using namespace orvane::test;

/// The complete records' paths, worked out apart from the reader: every third of the pieces that a
/// comma ends.
std::vector<std::string> pathsOf(const std::string& reply) {
    std::vector<std::string> paths;
    std::istringstream pieces(reply);
    int count = 0;
    for (std::string piece; std::getline(pieces, piece, ',') && !pieces.eof();)
        if (++count % 3 == 0) paths.push_back(piece);
    return paths;
}

struct Store {
    TempFolder folder;
    JumpingClock clock{at(2006, 11, 15, 9, 30)};
    Module1 module;
    OperationPanel panel;
    FakeHttp http{clock};
    FakePages browser1{clock}, browser2{clock};
    FakeViews views;
    FakeOperator op{clock};
    FakeImageControl imageControl;
    Busy busy;
    Warnings warnings{clock};
    ErrorLog log{folder.path() / "program", clock};
    Faults faults{log, clock, op};
    DaySchedules schedules{module, panel, clock, [](auto) { return 9h; }};
    DayWatch days{module, panel, schedules, clock};
    DiskWatch disk;
    FileWriter files{FileWriter::Force::No};
    PictureArchive archive{{module, days, disk, files, imageControl, views, warnings, log, clock}};
    ImageStore store{
        {module, panel, archive, http, browser1, browser2, log, faults, op, clock, busy}};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string reply(reinterpret_cast<const char*>(data), size);
    const std::string html = "<html>" + reply;
    require(textOfPage(html).size() <= html.size()); // no tag and no entity becomes longer
    reply = textOfPage(std::move(reply));
    const std::vector<std::string> expected = pathsOf(reply);
    std::string_view rest = reply;
    for (const std::string& path : expected)
        require(nextPicturePath(rest) == path);
    require(!nextPicturePath(rest) && recordCount(reply) == expected.size());

    Store s;
    s.panel.Dir1[0].path = s.module.defaultDataFolder = s.folder.path() / "data";
    s.module.imageProcessing = false;
    s.browser1.answer = [&](const std::string&) { return reply; };
    s.http.latency = 0ms;
    s.http.answer = [](const std::string& url) {
        return url.size() % 2 == 0 ? FakeHttp::picture(url.substr(0, 100))
                                   : FakeHttp::failed("HTTP status 404");
    };
    finish(s.clock, s.store.Test_DL());
    require(!s.busy.active());
    require(s.http.requests <= static_cast<std::int64_t>(10 * expected.size()));
    // one dated folder, nothing in it but files, nothing beside it but those of processed copies
    for (const auto& entry : std::filesystem::recursive_directory_iterator(s.folder.path())) {
        const auto path = entry.path().lexically_relative(s.folder.path());
        static const std::set<std::filesystem::path> folders{"data", "data/20061115", "data/Edit",
                                                             "data/Edit/20061115"};
        require(entry.is_directory() ? folders.contains(path)
                                     : path.parent_path() == "data/20061115");
    }
    return 0;
}
