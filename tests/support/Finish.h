#pragma once

#include "platform/Clock.h"

#include <gtest/gtest.h>

#include <QEventLoop>
#include <QTimer>

namespace orvane::test {

/// Runs the event loop until `ended` (looked at every millisecond), or for 20 s, which is a fault.
template <class Condition>
void runEventLoopUntil(Condition ended) {
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (ended()) loop.quit();
    });
    look.start(1);
    QTimer::singleShot(20s, &loop, &QEventLoop::quit);
    if (!ended()) loop.exec();
    EXPECT_TRUE(ended());
}

/// Runs the event loop until a task that has been started is done, and answers its result.
template <class T>
T finish(Task<T>& task) {
    runEventLoopUntil([&] { return task.done(); });
    return task.result();
}
/// The same for one that is not started yet.
template <class T>
T finish(Task<T>&& task) {
    task.start();
    return finish(task);
}

} // namespace orvane::test
