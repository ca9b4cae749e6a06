#pragma once

#include <functional>
#include <string>

namespace orvane {

/// A hidden page loader. Every navigation completes once, later, also when it failed (then with an
/// empty text); one that the next navigation replaces does not complete.
class WebBrowser {
  public:
    virtual ~WebBrowser() = default;
    virtual void navigate(std::string url) = 0;
    virtual bool busy() const = 0;
    /// The loaded document's text, UTF-8. It is handed over, since it may be large: a second call
    /// finds it empty.
    virtual std::string takeInnerText() = 0;
    virtual void onDocumentComplete(std::function<void()> handler) = 0;
};

} // namespace orvane
