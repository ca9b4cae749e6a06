#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/ElidedLabel.h"
#include "ui/panel/PanelGroups.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace orvane {
namespace {

QListWidget* foundList(PanelControls& controls, OperationPanel& panel,
                       std::function<void(const std::filesystem::path&)> open) {
    auto* list = new QListWidget;
    list->setObjectName("lst_found");
    list->setAccessibleName("Files found");
    list->setToolTip("The files found. Double-click one, or press Enter, to open it.");
    list->setTextElideMode(Qt::ElideMiddle);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    controls.bindings().follow(panel.lst_found,
                               [list](const std::vector<std::filesystem::path>& files) {
                                   list->clear();
                                   for (const auto& file : files)
                                       list->addItem(toQString(file.filename()));
                               });
    // `itemActivated` is the double click and Enter. The row is looked up in the value, not in the
    // item: a name alone does not say which folder it was found in.
    QObject::connect(list, &QListWidget::itemActivated, list,
                     [&panel, list, open = std::move(open)](QListWidgetItem* item) {
                         const auto row = static_cast<std::size_t>(list->row(item));
                         const auto& files = panel.lst_found.get();
                         if (row < files.size()) open(files[row]);
                     });
    return list;
}

} // namespace

QGroupBox* findGroup(PanelControls& controls, OperationPanel& panel, FolderScan& scan,
                     std::function<void(const std::filesystem::path&)> open) {
    QLineEdit* text = controls.textBox(
        {"txt_find", "Part of the name",
         "What the names of the files hold, such as 20061115_09; empty finds every file. "
         "Capital and small letters differ."},
        panel.txt_find, {});
    text->setPlaceholderText("part of the name");
    QPushButton* button = controls.button(
        {"cmd_find", "Fi&nd", "Looks through the folder; at most 24 files are listed."},
        panel.cmd_find, [&scan] { scan.cmd_find_Click(); });
    // By way of the button, so that Enter does nothing while that is locked.
    QObject::connect(text, &QLineEdit::returnPressed, button, &QPushButton::click);
    QVBoxLayout* rows = controls.folder(
        {"Dir1_1", "Folder to look through",
         "The sub-folders of the folder that is looked through. Double-click one, or press Enter, "
         "to look through it."},
        "Files are looked for in %1", panel.Dir1[1],
        [&panel](const std::filesystem::path& path) { panel.Dir1[1].path = path; });
    rows->addLayout(row({{text, 1}, button}));
    rows->addWidget(foundList(controls, panel, std::move(open)), 2);
    rows->addWidget(
        controls.label({"lbl_found", "Result", "How many files were found."}, panel.lbl_found));
    return panelGroup("Find files in a folder", rows);
}

} // namespace orvane
