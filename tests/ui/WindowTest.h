#pragma once

#include "tests/support/TestPictures.h"
#include "tests/support/TestWindow.h"
#include "ui/Text.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLabel>
#include <QListView>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTabWidget>
#include <QTextBrowser>

namespace orvane::test {

/// Box and option buttons react on their sign and text only.
inline void tick(const QWidget& form, const char* name) {
    QTest::mouseClick(&find<QAbstractButton>(form, name), Qt::LeftButton, {}, QPoint(8, 8));
}
inline std::string textOf(const QWidget& form, const char* name) {
    return find<QLabel>(form, name).text().toStdString();
}
inline std::string focusOf(const QWidget& form) {
    return form.focusWidget() == nullptr ? "" : form.focusWidget()->objectName().toStdString();
}
inline testing::AssertionResult has(const std::string& text, const std::string& part) {
    if (text.find(part) != std::string::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << '"' << part << "\" is not in: " << text;
}

/// The file dialog in front; nothing when there is none.
inline QFileDialog* fileDialog() {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* dialog = qobject_cast<QFileDialog*>(window); dialog && dialog->isVisible())
            return dialog;
    return nullptr;
}
/// What a file dialog began with; of the folder its own name.
struct FileQuestion {
    std::string title, folder, name;
};
/// Answers the file dialog in front with these files, as they are typed; without one cancels it.
inline FileQuestion answer(const std::vector<std::filesystem::path>& files) {
    QFileDialog* dialog = fileDialog();
    if (dialog == nullptr) throw std::runtime_error("no file dialog is open");
    auto& field = find<QLineEdit>(*dialog, "fileNameEdit");
    FileQuestion asked{dialog->windowTitle().toStdString(),
                       dialog->directory().dirName().toStdString(), field.text().toStdString()};
    QStringList names;
    for (const std::filesystem::path& file : files)
        names << '"' + toQString(file) + '"';
    // a completion would select what it finds, and what is selected goes before what is typed
    const QSignalBlocker uncompleted(field);
    find<QListView>(*dialog, "listView").clearSelection();
    field.setText(names.join(' '));
    dialog->setOption(QFileDialog::DontConfirmOverwrite); // no test may wait for an answer
    QMetaObject::invokeMethod(dialog, files.empty() ? "reject" : "accept");
    EXPECT_FALSE(dialog->isVisible()) << "what was answered is refused";
    return asked;
}

/// Stands in for the desktop's programs: its signal is called for what is to be opened.
struct FakeDesktop {
    FakeDesktop() {
        QObject::connect(&receiver, &QTextBrowser::anchorClicked, &receiver,
                         [this](const QUrl& url) { opened << url.fileName(); });
        QDesktopServices::setUrlHandler("file", &receiver, "anchorClicked");
    }
    ~FakeDesktop() { QDesktopServices::unsetUrlHandler("file"); }

    QTextBrowser receiver;
    QStringList opened; ///< the names of files and folders
};

/// A dark desktop as long as it lives.
struct DarkDesktop {
    DarkDesktop() { use(QPalette(QColor(50, 50, 50), QColor(40, 40, 40))); }
    ~DarkDesktop() { use(QPalette()); }
    static void use(const QPalette& colours) {
        QApplication::setPalette(colours);
        QCoreApplication::sendPostedEvents();
    }
};

/// The main window at 8:00, driven by events. Its operator's answers take their time by `clock`,
/// not by the station's.
class WindowTest : public testing::Test {
  protected:
    WindowTest() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    template <class Part = QWidget>
    Part& part(const char* name) const {
        return find<Part>(w.main, name);
    }
    std::string text(const char* label) const { return textOf(w.main, label); }
    bool isOn(const char* control) const { return part(control).isEnabled(); }
    QAction& action(const char* name) const { return part<QAction>(name); }
    void trigger(const char* name) { action(name).trigger(); }
    void run(const char* entry) {
        trigger(entry);
        settle();
    }
    void key(QWidget& widget, Qt::Key code, Qt::KeyboardModifiers keys = {}) {
        QTest::keyClick(&widget, code, keys);
        settle();
    }
    void settle() {
        w.clock.run(1s);
        QTest::qWait(1);
    }
    QDialog& open(const char* entry, const char* dialog) {
        trigger(entry);
        return part<QDialog>(dialog);
    }
    int page() const { return part<QTabWidget>("pages").currentIndex(); }
    void showPage(int index) { part<QTabWidget>("pages").setCurrentIndex(index); }

    std::filesystem::path write(const std::string& name, int width = 64, int height = 48) {
        auto file = w.dataFolder() / name;
        writeFile(file, encoded(gradient(width, height)));
        return file;
    }
    ImageWindow& openPicture(const std::filesystem::path& file) {
        w.pictures.openImage(file);
        w.clock.run(1s);
        return *windows().last();
    }
    /// The picture windows that the operator opened.
    QList<ImageWindow*> windows() const { return w.main.findChildren<ImageWindow*>("frmImage"); }
    PictureArea& area() const { return *w.main.findChild<PictureArea*>(); }
    /// The titles of all windows in the area.
    std::string titles() const {
        QStringList all;
        for (const QMdiSubWindow* frame : area().subWindowList())
            all << frame->windowTitle();
        return all.join(", ").toStdString();
    }
    /// Has windows that are closed deleted.
    static void clearAway() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
    Window w{op};
};

} // namespace orvane::test
