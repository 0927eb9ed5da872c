// PNG, through libpng. Its errors leave by longjmp: the functions that set the jump hold nothing that
// needs a destructor.
#include "vxtool/failure.h"
#include "vxtool/formats.h"

#include <csetjmp>
#include <cstring>
#include <png.h>

namespace vxtool {
namespace {

constexpr char kRanOut[] = "ran out of bytes";
constexpr char kNoMemory[] = "out of memory";

// What the callbacks of libpng see.
struct Stream
{
    std::span<const uint8_t> in;
    std::vector<uint8_t>* out = nullptr;
    char message[160] = "";
};

void OnError(png_structp png, png_const_charp message)
{
    auto* stream = static_cast<Stream*>(png_get_error_ptr(png));
    std::strncpy(stream->message, message, sizeof(stream->message) - 1);
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

void OnRead(png_structp png, png_bytep to, size_t count)
{
    auto* stream = static_cast<Stream*>(png_get_io_ptr(png));
    if (count > stream->in.size())
        png_error(png, kRanOut);
    std::memcpy(to, stream->in.data(), count);
    stream->in = stream->in.subspan(count);
}

bool Appended(std::vector<uint8_t>& out, const uint8_t* from, size_t count)
{
    try {
        out.insert(out.end(), from, from + count);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void OnWrite(png_structp png, png_bytep from, size_t count)
{
    if (!Appended(*static_cast<Stream*>(png_get_io_ptr(png))->out, from, count))
        png_error(png, kNoMemory);
}

void OnFlush(png_structp) {}

struct Reader
{
    Stream stream;
    png_structp png = nullptr;
    png_infop info = nullptr;

    explicit Reader(std::span<const uint8_t> bytes) : stream{bytes}
    {
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &stream, OnError, OnWarning);
        info = png ? png_create_info_struct(png) : nullptr;
    }
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
};

struct Writer
{
    Stream stream;
    png_structp png = nullptr;
    png_infop info = nullptr;

    explicit Writer(std::vector<uint8_t>& bytes) : stream{{}, &bytes}
    {
        png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &stream, OnError, OnWarning);
        info = png ? png_create_info_struct(png) : nullptr;
    }
    ~Writer() { png_destroy_write_struct(&png, &info); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
};

// Everything up to the pixels.
bool ReadHead(Reader& reader)
{
    if (setjmp(png_jmpbuf(reader.png)))
        return false;
    png_set_read_fn(reader.png, &reader.stream, OnRead);
    png_set_user_limits(reader.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX); // CheckSize tells more
    // A damaged tRNS or PLTE must not pass for a picture that has none.
    png_set_crc_action(reader.png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
    png_read_info(reader.png, reader.info);
    return true;
}

// Blue, green, red, alpha, with 8 or 16 bits each, low byte first. Reads to the end of the file, so
// that a missing end is noticed.
bool ReadRows(Reader& reader, png_bytepp rows)
{
    if (setjmp(png_jmpbuf(reader.png)))
        return false;
    const bool deep = png_get_bit_depth(reader.png, reader.info) == 16;
    png_set_expand(reader.png);
    png_set_gray_to_rgb(reader.png);
    png_set_bgr(reader.png);
    png_set_add_alpha(reader.png, deep ? 0xFFFF : 0xFF, PNG_FILLER_AFTER);
    if (deep)
        png_set_swap(reader.png);
    png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
    png_read_image(reader.png, rows);
    png_read_end(reader.png, nullptr);
    return true;
}

bool WriteRows(Writer& writer, const Dib& dib, int colourType, int depth, png_bytepp rows)
{
    if (setjmp(png_jmpbuf(writer.png)))
        return false;
    png_set_write_fn(writer.png, &writer.stream, OnWrite, OnFlush);
    png_set_user_limits(writer.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(writer.png, writer.info, png_uint_32(dib.Width()), png_uint_32(dib.Height()), depth,
                 colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(writer.png, writer.info);
    png_set_bgr(writer.png);
    if (depth == 16)
        png_set_swap(writer.png);
    png_write_image(writer.png, rows);
    png_write_end(writer.png, nullptr);
    return true;
}

[[noreturn]] void FailReading(const Reader& reader, const std::string& name)
{
    if (std::strcmp(reader.stream.message, kRanOut) == 0)
        FailFile(name, " is truncated: the PNG picture goes on behind the end of the file");
    FailFile(name, " is a damaged PNG picture (", reader.stream.message, ")");
}

std::vector<png_bytep> RowPointers(Dib& dib)
{
    std::vector<png_bytep> rows(size_t(dib.Height()));
    for (int32_t y = 0; y < dib.Height(); ++y)
        rows[size_t(y)] = dib.Row(y);
    return rows;
}

const char* ColourTypeText(int colourType)
{
    switch (colourType) {
    case PNG_COLOR_TYPE_GRAY:
        return "gray";
    case PNG_COLOR_TYPE_PALETTE:
        return "palette";
    case PNG_COLOR_TYPE_RGB:
        return "colour";
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return "gray and alpha";
    default:
        return "colour and alpha";
    }
}

std::vector<std::pair<std::string, std::string>> Facts(const Reader& reader)
{
    const int type = png_get_color_type(reader.png, reader.info);
    const int depth = png_get_bit_depth(reader.png, reader.info);
    const bool interlaced = png_get_interlace_type(reader.png, reader.info) != PNG_INTERLACE_NONE;
    std::vector<std::pair<std::string, std::string>> facts;
    facts.emplace_back("format", Join("PNG, ", ColourTypeText(type), interlaced ? ", interlaced" : ""));
    facts.emplace_back("bits a pixel",
                       Join(depth * png_get_channels(reader.png, reader.info), ", ", depth, " a channel"));
    png_colorp palette = nullptr;
    int count = 0;
    if (png_get_PLTE(reader.png, reader.info, &palette, &count) && type == PNG_COLOR_TYPE_PALETTE)
        facts.emplace_back("palette", Join(count, " entries"));
    if (png_get_valid(reader.png, reader.info, PNG_INFO_tRNS))
        facts.emplace_back("transparency", "tRNS");
    return facts;
}

// Deflate makes at most 1032 bytes of one: a small file that promises more is cut off or a bomb.
void CheckPromise(const Reader& reader, size_t fileBytes, const std::string& name)
{
    const uint64_t height = png_get_image_height(reader.png, reader.info);
    if (png_get_rowbytes(reader.png, reader.info) * height / 1032 > fileBytes)
        FailFile(name, " is truncated: ", fileBytes, " bytes cannot hold its ", height, " rows");
}

struct PngForm
{
    VxPixelType type;
    int colourType, depth;
};

constexpr PngForm kPngForms[] = {
    {VXPIXEL_GRAY1, PNG_COLOR_TYPE_GRAY, 1},       {VXPIXEL_GRAY2, PNG_COLOR_TYPE_GRAY, 2},
    {VXPIXEL_GRAY4, PNG_COLOR_TYPE_GRAY, 4},       {VXPIXEL_GRAY8, PNG_COLOR_TYPE_GRAY, 8},
    {VXPIXEL_GRAY16, PNG_COLOR_TYPE_GRAY, 16},     {VXPIXEL_RGB24, PNG_COLOR_TYPE_RGB, 8},
    {VXPIXEL_RGBA32, PNG_COLOR_TYPE_RGB_ALPHA, 8}, {VXPIXEL_RGBA64, PNG_COLOR_TYPE_RGB_ALPHA, 16},
};

const PngForm* PngFormOf(VxPixelType type)
{
    const auto* found = std::ranges::find(kPngForms, type, &PngForm::type);
    return found == std::end(kPngForms) ? nullptr : found;
}

} // namespace

bool LooksLikePng(std::span<const uint8_t> bytes)
{
    return bytes.size() >= 8 && png_sig_cmp(bytes.data(), 0, 8) == 0;
}

bool PngHolds(VxPixelType type)
{
    return PngFormOf(type) != nullptr;
}

Picture ParsePng(std::span<const uint8_t> bytes, const std::string& name)
{
    Reader reader(bytes);
    if (reader.info == nullptr)
        throw std::bad_alloc();
    if (!ReadHead(reader))
        FailReading(reader, name);
    const auto width = png_get_image_width(reader.png, reader.info);
    const auto height = png_get_image_height(reader.png, reader.info);
    const bool deep = png_get_bit_depth(reader.png, reader.info) == 16;
    CheckSize(name, width, height, deep ? 64 : 32);
    CheckPromise(reader, bytes.size(), name);
    Picture picture{Dib(deep ? VXPIXEL_RGBA64 : VXPIXEL_RGBA32, int32_t(width), int32_t(height)),
                    Facts(reader)};
    std::vector<png_bytep> rows = RowPointers(picture.dib);
    if (!ReadRows(reader, rows.data()))
        FailReading(reader, name);
    return picture;
}

std::vector<uint8_t> EncodePng(const Dib& dib)
{
    const PngForm* form = PngFormOf(dib.Type());
    if (form == nullptr)
        FailArgument("a PNG picture cannot hold the type ", NameOfType(dib.Type()));
    std::vector<uint8_t> bytes;
    Writer writer(bytes);
    // libpng takes rows that it does not change by a pointer to what it might.
    std::vector<png_bytep> rows = RowPointers(const_cast<Dib&>(dib));
    if (writer.info == nullptr || !WriteRows(writer, dib, form->colourType, form->depth, rows.data()))
        throw std::bad_alloc();
    return bytes;
}

} // namespace vxtool
