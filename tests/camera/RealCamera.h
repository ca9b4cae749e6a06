#pragma once

#include "platform/curl/CurlTransfer.h"
#include "platform/qt/QtClock.h"
#include "simulators/sky-camera/SkyCamera.h"
#include "tests/support/Patience.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {

/// A station whose camera is the simulated one, over real connections and in real time.
struct RealCamera {
    explicit RealCamera(skycamera::SkyCameraOptions options = {}) : simulator(small(options)) {
        EXPECT_TRUE(simulator.start());
        s.panel.txtIp.text = "127.0.0.1";
        s.panel.txtPort.text = std::to_string(simulator.port());
    }
    void setFault(const QString& faults, int requests = 0, const QByteArray& path = {}) {
        ASSERT_TRUE(simulator.setFault(faults, requests, path)) << faults.toStdString();
    }

    static skycamera::SkyCameraOptions small(skycamera::SkyCameraOptions options) {
        options.size = {160, 120};
        return options;
    }

    skycamera::SkyCamera simulator;
    TestStation s{at(2006, 11, 15)};
    QtClock clock;
    CurlLoop curl;
    HttpLimits limits = measuredLimits();
    CurlTransfer transfer{curl, clock, limits};
};

} // namespace orvane::test
