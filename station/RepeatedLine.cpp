#include "station/RepeatedLine.h"

namespace orvane {

void RepeatedLine::write(const std::string& text) {
    if (count_ > 0 && text == text_) {
        ++count_;
        return;
    }
    settle();
    text_ = text;
    count_ = 1;
    log_.write(text_);
    settling_ = settleLater();
    settling_.start();
}

void RepeatedLine::settle() {
    if (count_ > 1) log_.write(text_ + " (" + std::to_string(count_) + " times)");
    count_ = 0;
}

Task<> RepeatedLine::settleLater() {
    co_await clock_.sleep(1min);
    settle();
}

} // namespace orvane
