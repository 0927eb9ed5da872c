// fields: interlaced video taken apart and put together.
#include "vx/dibcopy.h"
#include "vx/fields.h"
#include "vxtool/commands.h"
#include "vxtool/conversion.h"
#include "vxtool/failure.h"
#include "vxtool/fields.h"

namespace vxtool {
namespace {

constexpr Choice kFieldNames[] = {{"top", kTopField}, {"bottom", kBottomField}};

// Every second row of a bitmap whose header has no masks and no table behind it.
struct FieldBitmap
{
    FieldBitmap(Dib& dib, FieldNumber field) : header(*dib.Header()), stride(2 * int32_t(dib.RowBytes()))
    {
        const int32_t first = field == kTopField ? 0 : 1;
        header.biHeight = (dib.Height() + 1 - first) / 2;
        pixels = dib.Row(first + 2 * (header.biHeight - 1));
    }
    BITMAPINFOHEADER header;
    uint8_t* pixels;
    int32_t stride;
};

// A picture in pixels that no mask or table explains.
Dib LoadPlain(const std::string& path)
{
    Dib dib = ReadPicture(path).dib;
    const VxPixelType type = WorkingType(dib.Type());
    return Converted(std::move(dib), type);
}

Dib LoadPlain(const std::string& path, VxPixelType type)
{
    return Converted(ReadPicture(path).dib, type);
}

void WriteAs(const Arguments& arguments, size_t operand, Dib dib)
{
    const std::string& path = arguments.Operand(operand);
    const VxPixelType type = CheckOutput(path, AskedType(arguments), dib.Type());
    WritePicture(path, Converted(std::move(dib), type));
}

void Keep(const Arguments& arguments)
{
    const auto field = FieldNumber(arguments.OneOf("--keep", kFieldNames, kTopField));
    CheckOutput(arguments.Operand(1), AskedType(arguments));
    const Dib frame = LoadPlain(arguments.Operand(0));
    WriteAs(arguments, 1, Deinterlaced(frame, field));
}

void Split(const Arguments& arguments)
{
    if (arguments.Operand(1) == arguments.Operand(2))
        FailArgument("TOP and BOTTOM must be two files, not ", arguments.Operand(1), " twice");
    for (const size_t operand : {1, 2})
        CheckOutput(arguments.Operand(operand), AskedType(arguments));
    Dib frame = LoadPlain(arguments.Operand(0));
    if (frame.Height() < 2)
        FailArgument(arguments.Operand(0), " has one row and so no second field");
    WriteAs(arguments, 1, OneField(frame, kTopField));
    WriteAs(arguments, 2, OneField(frame, kBottomField));
}

void Merge(const Arguments& arguments)
{
    CheckOutput(arguments.Operand(2), AskedType(arguments));
    Dib frame = LoadPlain(arguments.Operand(0));
    const Dib other = LoadPlain(arguments.Operand(1), frame.Type());
    CheckSameSize(arguments.Operand(0), frame, arguments.Operand(1), other);
    WriteAs(arguments, 2, Merged(std::move(frame), other));
}

void Weave(const Arguments& arguments)
{
    CheckOutput(arguments.Operand(2), AskedType(arguments));
    const Dib top = LoadPlain(arguments.Operand(0));
    const Dib bottom = LoadPlain(arguments.Operand(1), top.Type());
    const int32_t spare = top.Height() - bottom.Height();
    if (top.Width() != bottom.Width() || spare < 0 || spare > 1)
        FailArgument(arguments.Operand(0), " is ", top.Width(), "x", top.Height(), " and ",
                     arguments.Operand(1), " is ", bottom.Width(), "x", bottom.Height(),
                     " pixels; fields must be of one size, or the top one a row higher");
    WriteAs(arguments, 2, Woven(top, bottom));
}

struct Mode
{
    const char* option;
    const char* operands;
    size_t count;
    void (*run)(const Arguments&);
};
constexpr Mode kModes[] = {
    {"--keep", "IN OUT --keep FIELD", 2, Keep},
    {"--split", "IN TOP BOTTOM --split", 3, Split},
    {"--weave", "TOP BOTTOM OUT --weave", 3, Weave},
    {"--merge", "A B OUT --merge", 3, Merge},
};

void RunFields(const Arguments& arguments)
{
    const Mode* chosen = nullptr;
    for (const Mode& mode : kModes) {
        if (!arguments.Has(mode.option))
            continue;
        if (chosen)
            FailArgument(chosen->option, " and ", mode.option, " exclude each other");
        chosen = &mode;
    }
    if (chosen == nullptr)
        FailArgument("one of --keep, --split, --weave and --merge is needed");
    if (arguments.OperandCount() != chosen->count)
        FailArgument("the usage is vxtool fields ", chosen->operands);
    chosen->run(arguments);
}

constexpr Option kFieldsOptions[] = {
    {"--keep", "FIELD", "a whole picture of one field of IN, top or bottom; the other rows are made new"},
    {"--split", nullptr, "write the two fields of IN as pictures of half the height"},
    {"--weave", nullptr, "make a frame of two such pictures"},
    {"--merge", nullptr, "make a frame of the top field of A and the bottom field of B, whole pictures"},
    {"--type", "TYPE", "pixel type of what is written (default rgba32, or as deep as IN)"},
};

} // namespace

Dib Deinterlaced(const Dib& frame, FieldNumber field)
{
    Dib whole(frame.Type(), frame.Width(), frame.Height());
    CheckStatus(VxDibCopyInterlace(whole.Header(), nullptr, nullptr, 0, frame.Header(), nullptr, nullptr, 0,
                                   field, uint32_t(kFineQuality)));
    return whole;
}

Dib OneField(Dib& frame, FieldNumber field)
{
    const FieldBitmap rows(frame, field);
    Dib half(frame.Type(), frame.Width(), rows.header.biHeight);
    CheckStatus(VxDibCopy(half.Header(), nullptr, nullptr, 0, &rows.header, rows.pixels, nullptr, rows.stride,
                          uint32_t(kFineQuality), 0.0, 0.0));
    return half;
}

Dib Woven(const Dib& top, const Dib& bottom)
{
    Dib frame(top.Type(), top.Width(), top.Height() + bottom.Height());
    for (const FieldNumber field : {kTopField, kBottomField}) {
        const FieldBitmap rows(frame, field);
        const Dib& half = field == kTopField ? top : bottom;
        CheckStatus(VxDibCopy(&rows.header, rows.pixels, nullptr, rows.stride, half.Header(), nullptr,
                              nullptr, 0, uint32_t(kFineQuality), 0.0, 0.0));
    }
    return frame;
}

Dib Merged(Dib frame, const Dib& other)
{
    CheckStatus(VxDibMergeFields(frame.Header(), nullptr, 0, other.Header(), nullptr, 0, kBottomField));
    return frame;
}

const Command kFields = {
    "fields",
    "take the fields of interlaced video apart, and put them together",
    "IN OUT | IN TOP BOTTOM | TOP BOTTOM OUT | A B OUT",
    2,
    3,
    kFieldsOptions,
    "vxtool fields frame.png out.png --keep top",
    RunFields,
};

} // namespace vxtool
