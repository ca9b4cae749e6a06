#pragma once

#include "station/Value.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane {

struct Label {
    Value<std::string> caption;
};
struct TextBox {
    Value<std::string> text;
    Value<bool> enabled{true};
};
struct CheckBox {
    Value<bool> ticked;
    Value<bool> enabled{true};
};
struct Button {
    Value<bool> enabled{true};
};
struct Spinner {
    Value<int> value;
    Value<bool> enabled{true};
};
struct Frame {
    Value<bool> enabled{true};
};
struct FolderList {
    Value<std::filesystem::path> path;
    Value<bool> enabled{true};
};
struct ProgressBar {
    Value<bool> visible;
    Value<int> maximum; ///< 0: something is going on, nobody knows how long
    Value<int> value;
};

/// How the station is doing, gravest last.
enum class Grade : std::uint8_t { Off, Well, Attention, Trouble };
struct StatusSign {
    Value<Grade> grade;
    Value<std::string> words{"Recording is off"}; ///< what the sign stands for
};

/// The controls of the operation panel, named as on the window. Texts are UTF-8. Routines of every
/// subsystem read and set them; `ui/frmOperation` shows them and forwards edits.
struct OperationPanel {
    static constexpr std::size_t kFieldCount = 7;
    /// The largest value of each field of `Text1`; the least is 0.
    static constexpr std::array<int, kFieldCount> kFieldLimits{23, 59, 23, 59, 23, 59, 59};

    /// 0 start hour, 1 start minute, 2 end hour, 3 end minute, 4 interval hour, 5 interval minute,
    /// 6 interval second.
    std::array<TextBox, kFieldCount> Text1;
    std::array<Spinner, kFieldCount> UpDown1;
    CheckBox chk_auto; ///< locks the schedule fields
    CheckBox chk_sun;  ///< the window follows the sun instead of the time fields
    Label lbl_window;  ///< today's window while it follows the sun, else empty
    CheckBox chk_time; ///< daily clock setting
    CheckBox chkLive;  ///< live view of the camera's picture

    Button Command1; ///< Start Recording
    Button Command2; ///< Stop Recording
    Button Command3; ///< Select Data Save Folder
    Button Command5; ///< camera recording on
    Button Command7; ///< camera recording off
    Button Command8; ///< test fetch

    Button Command4;           ///< Search and Download
    Button cmd_Download;       ///< Synchronise
    Button Command6{{false}};  ///< Stop Download
    ProgressBar pgb_run;       ///< a search or synchronisation run
    CheckBox chk_fill{{true}}; ///< fetch missed minutes from the camera's store

    std::array<FolderList, 2> Dir1; ///< 0 the data folder, 1 the folder that is looked through
    std::array<Frame, 2> Frame3;    ///< 1 encloses the data folder's controls
    TextBox txt_find;               ///< what to look for in file names
    Button cmd_find;
    Value<std::vector<std::filesystem::path>> lst_found;
    Label lbl_found; ///< how many were found

    TextBox txtIp;
    TextBox txtPort;
    TextBox txt_lat;  ///< degrees, north positive
    TextBox txt_long; ///< degrees, east positive
    TextBox txt_tz;   ///< whole hours east of universal time
    Label lbl_zone;   ///< that the zone does not fit the longitude, else empty

    StatusSign sgn_status; ///< beside the recording status
    Label lbl_fault;       ///< when and why the last attempt failed; empty: it did not

    Label lbl_camera;  ///< what the camera's buttons and the live view came to
    Label lbl_start;   ///< whether the camera answered as recording was started
    Label Label7;      ///< recording status
    Label Label11;     ///< recorded-image count
    Label Label12;     ///< date
    Label Label13;     ///< time
    Label lbl_sunrise; ///< one hour before sunrise
    Label lbl_sunset;  ///< one hour after sunset
    Label lbl_free;    ///< free space of the data folder's disk
    Label lbl_dlcnt;   ///< files that the present or last run has downloaded
    Label lbl_sync;    ///< span of a synchronisation, minutes
};

} // namespace orvane
