#pragma once

#include "archive/LedgerKeeper.h"
#include "archive/PictureArchive.h"
#include "camera/CameraPanel.h"
#include "camera/GapFilling.h"
#include "camera/ImageStore.h"
#include "core/DailyClocks.h"
#include "core/PanelSettings.h"
#include "core/PanelStatus.h"
#include "core/Recording.h"
#include "core/Wishes.h"
#include "platform/Clock.h"
#include "platform/HttpTransfer.h"
#include "platform/Operator.h"
#include "station/Busy.h"
#include "station/ErrorLog.h"
#include "station/Faults.h"
#include "station/ImageViews.h"
#include "station/Module1.h"
#include "station/OperationPanel.h"
#include "station/Warnings.h"

#include <functional>

namespace orvane {

class StartTest;

/// What the start-up, the main loop and the capture cycle work with. `main` builds every part and
/// keeps them alive longer than any task.
struct Station {
    Module1& module;
    OperationPanel& panel;
    PanelSettings& settings;
    PanelStatus& status;
    Recording& recording;
    CameraPanel& camera;
    ImageStore& store;
    HttpTransfer& http;
    DayWatch& days;
    LedgerKeeper& ledger;
    DiskWatch& disk;
    PictureArchive& archive;
    GapFilling& gaps;
    Wishes& wishes;
    ErrorLog& log;
    Faults& faults;
    Clock& clock;
    Operator& op;
    Warnings& warnings;
    Busy& busy;
    ImageViews& views;
    DailyClocks& dailyClocks;
    std::function<void()> showMainWindow;
    std::function<void(int)> endProgram;           ///< with the exit code
    std::function<void(bool)> keepAwake = nullptr; ///< called when recording is switched on or off
    std::function<void()> atWork = nullptr;        ///< called when the start-up has succeeded
    StartTest* startTest = nullptr;                ///< without it nothing is tested at a start
};

} // namespace orvane
