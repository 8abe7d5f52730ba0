#include "tools/packer/packPng.h"

#include "toolkit/pixmap.h"

#include <memory>
#include <png.h>

namespace {

struct pngFree {
    void operator()(png_image* image) const { png_image_free(image); }
};

// Frees what a reading or writing that went wrong has left.
using pngGuard = std::unique_ptr<png_image, pngFree>;

png_int_32 StrideOf(const packPicture& picture)
{
    return static_cast<png_int_32>(pixmapStride(packPicture::Bits, picture.Width));
}

bool IsFit(const png_image& image, std::string& fault)
{
    if ((image.format & PNG_FORMAT_FLAG_ALPHA) != 0)
        fault = "it has transparency, which 24 bits cannot hold";
    else if (pixmapStride(packPicture::Bits, image.width) > pixmapBytesMost / image.height)
        fault = "it is too large";
    return fault.empty();
}

}  // namespace

std::optional<packPicture> packReadPng(const std::string& file, std::string& fault)
{
    png_image image = {};
    const pngGuard guard(&image);
    image.version = PNG_IMAGE_VERSION;
    fault.clear();
    if (png_image_begin_read_from_file(&image, file.c_str()) == 0) {
        fault = image.message;
        return std::nullopt;
    }
    if (!IsFit(image, fault))
        return std::nullopt;
    image.format = PNG_FORMAT_BGR;
    packPicture picture;
    picture.Width = image.width;
    picture.Height = image.height;
    picture.Pixels.resize(pixmapStride(packPicture::Bits, image.width) * image.height);
    if (png_image_finish_read(&image, nullptr, picture.Pixels.data(), StrideOf(picture), nullptr) == 0) {
        fault = image.message;
        return std::nullopt;
    }
    return picture;
}

bool packWritePng(const std::string& file, const packPicture& picture, std::string& fault)
{
    png_image image = {};
    const pngGuard guard(&image);
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.Width;
    image.height = picture.Height;
    image.format = PNG_FORMAT_BGR;
    if (png_image_write_to_file(&image, file.c_str(), 0, picture.Pixels.data(), StrideOf(picture), nullptr) !=
        0)
        return true;
    fault = image.message;
    return false;
}
