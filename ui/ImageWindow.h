#pragma once

#include <QPixmap>
#include <QWidget>

#include <filesystem>
#include <string>

namespace orvane {

/// Shows one picture, scaled to fit. It keeps the picture at no more than the screen's size. A
/// picture that cannot be read is replaced by a text that says so.
class ImageWindow : public QWidget {
    Q_OBJECT

  public:
    explicit ImageWindow(QWidget* parent = nullptr);

    void showFile(const std::filesystem::path& file);
    /// Shows a JPEG from memory under the title `caption`.
    void showJpeg(const std::string& jpeg, const QString& caption);
    /// Shows `text` where the picture would be.
    void showText(const QString& text);

    /// The file shown; empty for a picture from memory.
    const std::filesystem::path& file() const { return file_; }
    const QPixmap& picture() const { return picture_; }

    QSize sizeHint() const override { return {480, 360}; }
    QSize minimumSizeHint() const override { return {120, 90}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void load(QIODevice& source, const QString& fault);
    QSize screenPixels() const;

    std::filesystem::path file_;
    QPixmap picture_;
    QString text_;
};

} // namespace orvane
