#pragma once

#include "tests/support/Fakes.h"

#include <cstdio>

namespace orvane::test {

/// A camera that holds pictures by their names and answers searches and picture requests for them.
struct FakeCameraStore {
    std::set<std::string> names;
    std::string folder = "record/";
    std::size_t perPage = 2;
    bool broken = false; ///< lists pictures but sends none

    /// One picture a minute, seven seconds past.
    void record(const std::string& day, int firstHour, int lastHour) {
        for (int minute = firstHour * 60; minute < lastHour * 60; ++minute) {
            char name[64];
            std::snprintf(name, sizeof name, "%s_%02d%02d07_00.jpg", day.c_str(), minute / 60,
                          minute % 60);
            names.insert(name);
        }
    }

    std::string search(const std::string& url) const {
        int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
        std::sscanf(url.c_str() + std::min(url.find("&from_year="), url.size()),
                    "&from_year=%d&from_mon=%d&from_day=%d&from_hour=%d&from_min=%d&from_sec=%d",
                    &year, &month, &day, &hour, &minute, &second);
        char first[80];
        std::snprintf(first, sizeof first, "%04d%02d%02d_%02d%02d%02d", 2000 + year, month + 1,
                      day + 1, hour, minute, second);
        std::string reply;
        std::size_t listed = 0;
        for (auto name = names.lower_bound(first); name != names.end() && listed < perPage; ++name)
            reply += std::to_string(++listed) + ",x," + folder + *name + ",";
        return reply.empty() ? "NO_DATA" : reply + "\n";
    }

    HttpReply picture(const std::string& url) const {
        const std::string name = url.substr(url.rfind('/') + 1);
        if (broken || !names.contains(name)) return {false, 404, "", "HTTP status 404"};
        return FakeHttp::picture("stored " + name);
    }
};

} // namespace orvane::test
