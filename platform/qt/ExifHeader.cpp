#include "platform/qt/ExifHeader.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <libexif/exif-data.h>

namespace orvane {

namespace {

constexpr std::size_t kSegmentLimit = 65533;
constexpr ExifByteOrder kNewOrder = EXIF_BYTE_ORDER_INTEL;

struct Unref {
    void operator()(ExifData* data) const { exif_data_unref(data); }
    void operator()(ExifEntry* entry) const { exif_entry_unref(entry); }
    void operator()(ExifMem* memory) const { exif_mem_unref(memory); }
};
using Data = std::unique_ptr<ExifData, Unref>;

bool isEmpty(const ExifData& data) {
    for (const ExifContent* content : data.ifd)
        if (content->count > 0) return false;
    return true;
}

/// Null when nothing in the segment can be read.
Data parse(const std::string& segment) {
    Data data(exif_data_new());
    if (!data || segment.empty()) return nullptr;
    // The camera's tags stay as they are, also the ones the library does not know.
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    exif_data_load_data(data.get(), reinterpret_cast<const unsigned char*>(segment.data()),
                        static_cast<unsigned>(segment.size()));
    if (isEmpty(*data)) return nullptr;
    return data;
}

Data minimal() {
    Data data(exif_data_new());
    if (!data) return nullptr;
    exif_data_set_byte_order(data.get(), kNewOrder);
    exif_data_set_data_type(data.get(), EXIF_DATA_TYPE_COMPRESSED);
    exif_data_fix(data.get()); // adds the mandatory tags
    return data;
}

/// Replaces the tag, whatever type and length the camera gave it.
void setEntry(ExifData& data, ExifIfd ifd, ExifTag tag, ExifFormat format, const void* bytes,
              unsigned size) {
    ExifContent* content = data.ifd[ifd];
    while (ExifEntry* old = exif_content_get_entry(content, tag))
        exif_content_remove_entry(content, old);
    const std::unique_ptr<ExifMem, Unref> memory(exif_mem_new_default());
    const std::unique_ptr<ExifEntry, Unref> entry(exif_entry_new_mem(memory.get()));
    if (!entry) return;
    entry->data = static_cast<unsigned char*>(exif_mem_alloc(memory.get(), size));
    if (entry->data == nullptr) return;
    std::memcpy(entry->data, bytes, size);
    entry->tag = tag;
    entry->format = format;
    entry->size = size;
    entry->components = size / exif_format_get_size(format);
    exif_content_add_entry(content, entry.get());
}

void setNumber(ExifData& data, ExifIfd ifd, ExifTag tag, int value) {
    std::array<unsigned char, 4> bytes;
    exif_set_long(bytes.data(), exif_data_get_byte_order(&data), static_cast<ExifLong>(value));
    setEntry(data, ifd, tag, EXIF_FORMAT_LONG, bytes.data(), sizeof bytes);
}

void setOrientation(ExifData& data) {
    std::array<unsigned char, 2> bytes;
    exif_set_short(bytes.data(), exif_data_get_byte_order(&data), 1);
    setEntry(data, EXIF_IFD_0, EXIF_TAG_ORIENTATION, EXIF_FORMAT_SHORT, bytes.data(), sizeof bytes);
}

void dropThumbnail(ExifData& data) {
    ExifContent* content = data.ifd[EXIF_IFD_1];
    while (content->count > 0)
        exif_content_remove_entry(content, content->entries[content->count - 1]);
    data.size = 0; // the bytes themselves are freed with the data
}

std::string written(ExifData& data, const std::string& stamp, int width, int height) {
    dropThumbnail(data);
    setOrientation(data);
    setNumber(data, EXIF_IFD_EXIF, EXIF_TAG_PIXEL_X_DIMENSION, width);
    setNumber(data, EXIF_IFD_EXIF, EXIF_TAG_PIXEL_Y_DIMENSION, height);
    if (!stamp.empty())
        setEntry(data, EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL, EXIF_FORMAT_ASCII, stamp.c_str(),
                 static_cast<unsigned>(stamp.size() + 1));
    unsigned char* bytes = nullptr;
    unsigned size = 0;
    exif_data_save_data(&data, &bytes, &size);
    if (bytes == nullptr) return {};
    std::string segment(reinterpret_cast<const char*>(bytes), size);
    std::free(bytes);
    return segment;
}

} // namespace

int exifOrientation(const std::string& segment) {
    const Data data = parse(segment);
    if (!data) return 1;
    const ExifEntry* entry = exif_content_get_entry(data->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
    if (entry == nullptr || entry->format != EXIF_FORMAT_SHORT || entry->size < 2) return 1;
    const int value = exif_get_short(entry->data, exif_data_get_byte_order(data.get()));
    return value >= 1 && value <= 8 ? value : 1;
}

std::string exifForUpright(const std::string& segment, const std::string& stamp, int width,
                           int height) {
    if (const Data camera = parse(segment)) {
        std::string kept = written(*camera, stamp, width, height);
        if (!kept.empty() && kept.size() <= kSegmentLimit) return kept;
    }
    const Data fresh = minimal();
    return fresh ? written(*fresh, stamp, width, height) : std::string();
}

} // namespace orvane
