#include "ui/panel/FolderView.h"

#include "ui/Text.h"

#include <QFocusEvent>
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
        // An entry that cannot be asked is no folder to go into; the others are listed.
        std::error_code unreadable;
        if (entry->is_directory(unreadable)) listing.folders.push_back(entry->path());
    }
    std::sort(listing.folders.begin(), listing.folders.end());
    return listing;
}

fs::path parentOf(const fs::path& path) {
    // A path that ends with a separator has the folder itself as its parent.
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
    connect(this, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
        const auto folder = item->data(Qt::UserRole).value<fs::path>();
        // Notes have no folder.
        if (!folder.empty()) emit entered(folder);
    });
}

void FolderView::setPath(const fs::path& path) {
    path_ = path;
    list();
    // With the focus there must be a row that the arrow keys go on from; without it none looks
    // chosen.
    setCurrentRow(hasFocus() ? 0 : -1);
}

fs::path FolderView::currentFolder() const {
    const QListWidgetItem* item = currentItem();
    const auto folder = item == nullptr ? fs::path() : item->data(Qt::UserRole).value<fs::path>();
    return folder.empty() ? path_ : folder;
}

void FolderView::list() {
    clear();
    const fs::path parent = parentOf(path_);
    if (!parent.empty() && parent != path_)
        add("..", style()->standardIcon(QStyle::SP_FileDialogToParent), parent);
    const std::optional<Listing> listing = subFolders(path_);
    if (!listing) return addNote("(folder not available: choose another one)");
    const QIcon icon = style()->standardIcon(QStyle::SP_DirIcon);
    for (const fs::path& folder : listing->folders)
        add(toQString(folder.filename()), icon, folder);
    if (!listing->complete) addNote("(more folders are not shown)");
}

void FolderView::add(const QString& name, const QIcon& icon, const fs::path& folder) {
    auto* item = new QListWidgetItem(icon, name, this);
    item->setData(Qt::UserRole, QVariant::fromValue(folder));
}

void FolderView::addNote(const QString& note) {
    auto* item = new QListWidgetItem(note, this);
    item->setFlags(Qt::NoItemFlags);
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

QSize FolderView::minimumSizeHint() const {
    // Two rows: on small screens the list is what gives way before the panel has to scroll.
    const int rowHeight = std::max(fontMetrics().height(), iconSize().height()) + 2;
    return {fontMetrics().averageCharWidth() * 20, rowHeight * 2 + 2 * frameWidth()};
}

} // namespace orvane
