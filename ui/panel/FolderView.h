#pragma once

#include <QListWidget>

#include <filesystem>

namespace orvane {

/// A folder's sub-folders, to walk through: ".." and one row each; Enter or a double click goes in.
/// It holds at most `kMaxRows` sub-folders, and a folder that cannot be read is said to be so in a
/// row of its own. It lists when it is told a folder, when the keyboard comes to it and when it is
/// enabled again; nothing watches the folder, so in between it may be behind.
class FolderView : public QListWidget {
    Q_OBJECT

  public:
    /// More than the days of a year; a list that long is read on the window's thread.
    static constexpr std::size_t kMaxRows = 500;

    explicit FolderView(QWidget* parent = nullptr);

    /// The sub-folder that is chosen; the folder itself while none is.
    std::filesystem::path currentFolder() const;
    /// Lists `path`. Tells nobody.
    void setPath(const std::filesystem::path& path);

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

  signals:
    /// The operator went into another folder.
    void entered(const std::filesystem::path& path);

  protected:
    void focusInEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void list();
    void add(const QString& name, const QIcon& icon, const std::filesystem::path& folder);
    void addNote(const QString& note);

    std::filesystem::path path_;
};

} // namespace orvane
