#pragma once

#include <cstdint>

namespace orvane {

/// Flags are 16-bit integers in memory: -1 for set, 0 for clear.
constexpr std::int16_t asFlag(bool set) {
    return set ? -1 : 0;
}
constexpr bool isSet(std::int16_t flag) {
    return flag == asFlag(true);
}

/// How captured images are processed. Those that end in "Flg" are flags.
struct ImageOptions {
    std::int16_t Quality = 24; ///< compression factor, lower is better: 2, 24 or 56
    std::int16_t LrFlg = 0;    ///< mirror left to right
    std::int16_t DateFlg = 0;  ///< stamp date and time; honoured only together with LrFlg
    std::int16_t RawFlg = 0;   ///< keep the untouched file as well
    std::int16_t Delay = 15;   ///< seconds before a picture is fetched
    std::int16_t JpegTyp = 10; ///< save format code: 10 EXIF, 98 4:4:4
};

} // namespace orvane
