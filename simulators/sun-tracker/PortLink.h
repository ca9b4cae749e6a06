#pragma once

#include <QString>

namespace suntracker {

/// A symbolic link under a fixed name to the serial port, whose own name changes from run to run.
/// It is taken away with this object, unless somebody else has put another one there.
class PortLink {
  public:
    /// An empty path: no link.
    explicit PortLink(const QString& path) : path_(path) {}
    ~PortLink() { remove(); }
    PortLink(const PortLink&) = delete;
    PortLink& operator=(const PortLink&) = delete;

    /// Replaces an older link, but nothing else. Returns what went wrong, or an empty text.
    QString pointTo(const QString& target);
    void remove();

  private:
    QString path_;
    QString target_;
};

} // namespace suntracker
