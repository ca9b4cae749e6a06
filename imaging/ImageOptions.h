#pragma once

#include <cstdint>

namespace orvane {

/// How captured images are processed. The flags hold -1 for set and 0 for clear.
struct ImageOptions {
    std::int16_t Quality = 24; ///< compression factor, lower is better: 2, 24 or 56
    std::int16_t LrFlg = 0;    ///< mirror left to right
    std::int16_t DateFlg = 0;  ///< stamp date and time; honoured only together with LrFlg
    std::int16_t RawFlg = 0;   ///< keep the untouched file as well
    std::int16_t Delay = 15;   ///< seconds before a picture is fetched
    std::int16_t JpegTyp = 10; ///< save format code: 10 EXIF, 98 4:4:4
};

} // namespace orvane
