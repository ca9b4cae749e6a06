#pragma once

#include "platform/Clock.h"
#include "platform/HttpTransfer.h"
#include "platform/WebBrowser.h"

#include <memory>
#include <utility>
#include <vector>

namespace orvane {

/// A page loader over plain GET; HTML becomes the text that a reader would see.
class QtWebBrowser final : public WebBrowser {
  public:
    QtWebBrowser(std::unique_ptr<HttpTransfer> transfer, Clock& clock)
        : transfer_(std::move(transfer)), clock_(clock) {}

    void navigate(std::string url) override;
    bool busy() const override { return !navigation_.done(); }
    std::string takeInnerText() override { return std::exchange(text_, {}); }
    void onDocumentComplete(std::function<void()> handler) override {
        documentComplete_ = std::move(handler);
    }

  private:
    Task<> load(std::string url);

    std::unique_ptr<HttpTransfer> transfer_;
    Clock& clock_;
    std::string text_;
    std::function<void()> documentComplete_;
    Task<> navigation_;
    bool completing_ = false;
    std::vector<Task<>> retired_;
};

} // namespace orvane
