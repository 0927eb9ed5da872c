#include "vxtool/sheet.h"

#include "vx/channels.h"
#include "vx/composite.h"
#include "vxtool/commands.h"
#include "vxtool/patterns.h"
#include "vxtool/placing.h"
#include "vxtool/text.h"

namespace vxtool {
namespace {

constexpr int32_t kMargin = 32;
constexpr int32_t kSheetWidth = 2 * kMargin + kPanelWidth;
constexpr int32_t kHeadHeight = 104, kSectionHeight = 52, kCaptionHeight = 50, kPanelSpace = 12;
constexpr int32_t kRowHeight = kCellHeight + kCaptionHeight;
constexpr float kTitleScale = 3.5f, kSectionScale = 2.0f, kCaptionScale = 1.5f;

int32_t RowsOf(const Section& section)
{
    return (int32_t(section.cells.size()) + kSheetColumns - 1) / kSheetColumns;
}

int32_t PanelHeight(const Section& section)
{
    return section.panel ? section.panel->Height() + kPanelSpace : 0;
}

int32_t HeightOf(const Section& section)
{
    return kSectionHeight + PanelHeight(section) + RowsOf(section) * kRowHeight;
}

int32_t SheetHeight(const std::vector<Section>& sections)
{
    int32_t height = kHeadHeight + kMargin;
    for (const Section& section : sections)
        height += HeightOf(section);
    return height;
}

// The picture goes over a checkerboard by laying the board under it.
void DrawPicture(Frame& sheet, int32_t x, int32_t y, Frame picture)
{
    const Frame board = Checker(kCellWidth, kCellHeight, Form::Bytes, 11, Gray(0.33f), Gray(0.45f));
    Composite(picture.Data(), picture.Stride(), board.Data(), board.Stride(), 4, kCellWidth, kCellHeight,
              VX_COMPOSITE_DESTINATION_OVER, 1.0);
    FillArea(sheet, x - 1, y - 1, kCellWidth + 2, kCellHeight + 2, kLine);
    BitmapCopy(sheet.At(x, y), sheet.Stride(), picture.Data(), picture.Stride(), kCellWidth, 4, kCellHeight);
}

// As much of a caption as a cell is wide.
std::string_view Cut(std::string_view text, float scale)
{
    while (TextWidth(text, scale) > kCellWidth)
        text.remove_suffix(1);
    return text;
}

void DrawCell(Frame& sheet, int32_t x, int32_t y, const Cell& cell)
{
    DrawPicture(sheet, x, y, cell.picture);
    DrawText(sheet, x - 1, y + kCellHeight + 3, kCaptionScale, kCaption, Cut(cell.title, kCaptionScale));
    DrawText(sheet, x - 1, y + kCellHeight + 20, kDetailScale, kDetail, Cut(cell.detail, kDetailScale));
}

void DrawSection(Frame& sheet, int32_t y, const Section& section)
{
    const int32_t textWidth = TextWidth(section.title, kSectionScale);
    DrawText(sheet, kMargin - 2, y + 14, kSectionScale, kAccent, section.title);
    FillArea(sheet, kMargin + textWidth + 14, y + 25, kSheetWidth - 2 * kMargin - textWidth - 14, 1, kLine);
    if (const auto& panel = section.panel)
        BitmapCopy(sheet.At(kMargin, y + kSectionHeight), sheet.Stride(), panel->Data(), panel->Stride(),
                   panel->Width(), 4, panel->Height());
    const int32_t top = y + kSectionHeight + PanelHeight(section);
    for (size_t i = 0; i < section.cells.size(); ++i) {
        const int32_t column = int32_t(i) % kSheetColumns, row = int32_t(i) / kSheetColumns;
        DrawCell(sheet, kMargin + column * (kCellWidth + kSheetGap), top + row * kRowHeight,
                 section.cells[i]);
    }
}

void RunSheet(const Arguments& arguments)
{
    const Output output(arguments, 0);
    const auto picture = [&](size_t index, const Frame& own) {
        const bool given = arguments.OperandCount() > index;
        return Cover(given ? LoadFrame(arguments.Operand(index), Form::Bytes) : own, kCellWidth, kCellHeight);
    };
    // Our own pictures are made large and averaged down, which smooths them.
    const Frame back = picture(1, Scene(4 * kCellWidth, 4 * kCellHeight, Form::Bytes));
    const Frame front = picture(2, Discs(2 * kCellWidth, 2 * kCellHeight, Form::Bytes));
    const Frame mask = picture(3, Vignette(kCellWidth, kCellHeight, Form::Bytes));
    std::vector<Section> sections = Tour(back, front, mask);
    std::ranges::move(BitmapTour(back, front), std::back_inserter(sections));
    output.Write(DrawSheet("vxtool " VXTOOL_VERSION, "what the library does to pictures, one command a cell",
                           sections));
}

constexpr Option kSheetOptions[] = {kTypeOption};

} // namespace

Frame DrawSheet(const std::string& title, const std::string& subtitle, const std::vector<Section>& sections)
{
    Frame sheet(kSheetWidth, SheetHeight(sections), Form::Bytes);
    FillArea(sheet, 0, 0, sheet.Width(), sheet.Height(), kBackground);
    DrawText(sheet, kMargin - 4, 26, kTitleScale, kTitle, title);
    DrawText(sheet, kMargin - 2, 72, kSectionScale, kDetail, subtitle);
    int32_t y = kHeadHeight;
    for (const Section& section : sections) {
        DrawSection(sheet, y, section);
        y += HeightOf(section);
    }
    return sheet;
}

const Command kSheet = {
    "sheet",
    "make a contact sheet that shows every operation",
    "OUT [BACK [FRONT [MASK]]]",
    1,
    4,
    kSheetOptions,
    "vxtool sheet sheet.png holiday.png title.png",
    RunSheet,
};

} // namespace vxtool
