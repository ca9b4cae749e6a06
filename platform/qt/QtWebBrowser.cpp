#include "platform/qt/QtWebBrowser.h"

#include <QTextDocument>

namespace orvane {

namespace {

/// A device's pages are small; a larger one is nonsense, and reading it would hold up the window.
constexpr std::size_t kLargestPage = std::size_t{1} << 20;

/// The document's text; a reply that does not look like HTML is its own text.
std::string documentText(std::string body) {
    const auto first = body.find_first_not_of(" \t\r\n");
    if (first == std::string::npos || body[first] != '<') return body;
    if (body.size() > kLargestPage) return {};
    QTextDocument document;
    document.setHtml(QString::fromStdString(body));
    return document.toPlainText().toStdString();
}

} // namespace

void QtWebBrowser::navigate(std::string url) {
    // a handler may navigate on while its own navigation is still on the stack
    if (completing_) {
        retired_.push_back(std::move(navigation_));
    } else {
        retired_.clear();
    }
    navigation_ = load(std::move(url));
    navigation_.start();
}

Task<> QtWebBrowser::load(std::string url) {
    text_.clear();
    if (url.starts_with("about:")) {
        co_await clock_.yield();
    } else {
        Task<HttpReply> get = transfer_->get(std::move(url));
        HttpReply reply = co_await get;
        if (reply.ok) text_ = documentText(std::move(reply.body));
    }
    completing_ = true;
    if (documentComplete_) documentComplete_();
    completing_ = false;
}

} // namespace orvane
