#pragma once

#include "archive/FolderScan.h"
#include "camera/ImageStore.h"
#include "core/PanelSettings.h"
#include "core/Recording.h"
#include "station/OperationPanel.h"
#include "station/TaskGroup.h"
#include "ui/panel/PanelControls.h"

#include <QWidget>

class QGroupBox;
class QHBoxLayout;
class QTabWidget;

namespace orvane {

class FolderView;

/// The operation panel. It holds no logic: it shows the values of `OperationPanel` in widgets of
/// the same names and forwards what the operator does. What takes time is spawned into `tasks`, so
/// a click returns at once. What concerns other windows is a signal, and `frmMain` connects it. The
/// main window owns it; it goes before the values that it follows.
class frmOperation : public QWidget {
    Q_OBJECT

  public:
    /// What the panel shows and drives; all of it outlives the window.
    struct Parts {
        OperationPanel& panel;
        Recording& recording;
        PanelSettings& settings;
        CameraPanel& camera;
        ImageStore& store;
        FolderScan& folderScan;
        TaskGroup& tasks;
    };

    explicit frmOperation(Parts parts, QWidget* parent = nullptr);

    /// Gives the focus to "Start Recording".
    void focusStart();
    /// Turns to a page, from 0, and gives the focus to its first control that takes it.
    void showPage(int page);
    /// Turns to the page of a control of the panel and gives it the focus.
    QWidget& bring(const QString& name);
    /// The same for a button, and presses it.
    void press(const QString& button);

  signals:
    /// The operator asked for the camera's picture.
    void pictureWanted();
    /// The operator wants to see `file`.
    void imageWanted(const std::filesystem::path& file);
    /// The operator wants to see a day of the archive.
    void dayWanted(std::chrono::local_days day);
    /// The operator wants to see `folder` in the file manager.
    void folderShowWanted(const std::filesystem::path& folder);

  private:
    static void addPage(QTabWidget& pages, const QString& title, const QString& tip,
                        std::initializer_list<QWidget*> groups);
    QWidget* scheduleGroup();
    QWidget* recordingButtons();
    QWidget* folderGroup();
    QWidget* siteGroup();
    QLineEdit* addTimeField(QHBoxLayout& row, std::size_t index, const QString& unit);
    QLayout* siteField(const Face& face, TextBox& model, bool (PanelSettings::*change)());
    void orderTabs();
    void enterFolder(const std::filesystem::path& folder);
    void addFolderMenu(FolderView& list);
    void selectFolder();

    Parts parts_;
    QTabWidget* pages_;
    QPushButton* start_ = nullptr;
    PanelControls controls_;
};

} // namespace orvane
