#pragma once

#include "platform/Clock.h"
#include "platform/WebBrowser.h"

#include <optional>

namespace orvane {

/// Loads pages with a hidden browser for a routine that waits for them. It takes the browser's
/// completion for itself; what completes while nobody asked for a page is passed over.
class PageLoader {
  public:
    PageLoader(WebBrowser& browser, Clock& clock) : browser_(browser), clock_(clock) {
        browser_.onDocumentComplete([this] {
            if (complete_) complete_->fire();
        });
    }
    PageLoader(const PageLoader&) = delete;
    ~PageLoader() { browser_.onDocumentComplete({}); }

    void navigate(std::string url) {
        complete_.emplace(clock_);
        browser_.navigate(std::move(url));
    }
    bool busy() const { return browser_.busy(); }
    /// Waits until the page asked for last is complete; empty when it could not be loaded.
    Task<std::string> document() {
        if (complete_) {
            Signal& complete = *complete_;
            co_await complete;
        }
        co_return browser_.takeInnerText();
    }
    /// Ends the wait for a page with an empty text.
    void cancel() {
        if (complete_ && !complete_->fired()) browser_.navigate("about:blank");
    }

  private:
    WebBrowser& browser_;
    Clock& clock_;
    std::optional<Signal> complete_;
};

} // namespace orvane
