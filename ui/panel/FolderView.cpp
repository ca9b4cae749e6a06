#include "ui/panel/FolderView.h"

#include "ui/Text.h"

#include <QKeyEvent>
#include <QStyle>

#include <algorithm>
#include <optional>

namespace orvane {
namespace {

namespace fs = std::filesystem;

/// Bounds the time a folder full of files can take.
constexpr int kMaxEntries = 20000;

struct Listing {
    std::vector<fs::path> folders;
    bool complete = true;
};

std::optional<Listing> subFolders(const fs::path& folder) {
    std::error_code fault;
    fs::directory_iterator entry(folder, fault);
    if (fault) return std::nullopt;
    Listing listing;
    int looked = 0;
    for (; entry != fs::directory_iterator(); entry.increment(fault)) {
        if (fault || ++looked > kMaxEntries || listing.folders.size() == FolderView::kMaxRows) {
            listing.complete = false;
            break;
        }
        std::error_code unreadable;
        if (entry->is_directory(unreadable)) listing.folders.push_back(entry->path());
    }
    std::sort(listing.folders.begin(), listing.folders.end());
    return listing;
}

fs::path parentOf(const fs::path& path) {
    const fs::path folder = path.has_filename() ? path : path.parent_path();
    return folder.parent_path();
}

} // namespace

FolderView::FolderView(QWidget* parent) : QListWidget(parent) {
    setUniformItemSizes(true);
    setTextElideMode(Qt::ElideMiddle);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    const int icon = style()->pixelMetric(QStyle::PM_SmallIconSize);
    setIconSize({icon, icon});
    connect(this, &QListWidget::itemDoubleClicked, this,
            [this](QListWidgetItem* item) { enter(row(item)); });
}

void FolderView::setPath(const fs::path& path) {
    path_ = path;
    list();
    setCurrentRow(hasFocus() ? 0 : -1);
}

void FolderView::list() {
    clear();
    targets_.clear();
    const fs::path parent = parentOf(path_);
    if (!parent.empty() && parent != path_) {
        addItem(new QListWidgetItem(style()->standardIcon(QStyle::SP_FileDialogToParent), ".."));
        targets_.push_back(parent);
    }
    const std::optional<Listing> listing = subFolders(path_);
    if (!listing) return addNote("(folder not available)");
    const QIcon icon = style()->standardIcon(QStyle::SP_DirIcon);
    for (const fs::path& folder : listing->folders) {
        addItem(new QListWidgetItem(icon, toQString(folder.filename())));
        targets_.push_back(folder);
    }
    if (!listing->complete) addNote("(more folders are not shown)");
}

void FolderView::addNote(const QString& note) {
    auto* item = new QListWidgetItem(note, this);
    item->setFlags(Qt::NoItemFlags);
    targets_.emplace_back();
}

void FolderView::enter(int row) {
    const auto index = static_cast<std::size_t>(row);
    if (row < 0 || index >= targets_.size() || targets_[index].empty()) return;
    const fs::path target = targets_[index]; // the rows go while the new folder is listed
    emit entered(target);
}

void FolderView::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        return QListWidget::keyPressEvent(event);
    enter(currentRow());
}

void FolderView::focusInEvent(QFocusEvent* event) {
    // Folders come into being while the program runs; a click must still find its row.
    if (event->reason() != Qt::MouseFocusReason) {
        const int row = currentRow();
        list();
        setCurrentRow(std::clamp(row, 0, std::max(0, count() - 1)));
    }
    QListWidget::focusInEvent(event);
}

/// While recording the list stands still, and new days have got their folders meanwhile.
void FolderView::changeEvent(QEvent* event) {
    QListWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && isEnabled() && !path_.empty()) list();
}

QSize FolderView::sizeHint() const {
    return minimumSizeHint();
}

QSize FolderView::minimumSizeHint() const {
    const int rowHeight = std::max(fontMetrics().height(), iconSize().height()) + 2;
    return {fontMetrics().averageCharWidth() * 20, rowHeight * 4 + 2 * frameWidth()};
}

} // namespace orvane
