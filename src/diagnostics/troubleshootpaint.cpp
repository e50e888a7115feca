#include "troubleshootpaint.h"

namespace {

constexpr COLORREF linkColor = 0xC00000;
constexpr int rowMargin = 4; // pixels before the text

class MemoryContext {
  public:
    MemoryContext() : dc_(CreateCompatibleDC(nullptr)) {}
    ~MemoryContext() { DeleteDC(dc_); }
    MemoryContext(const MemoryContext&) = delete;
    MemoryContext& operator=(const MemoryContext&) = delete;
    operator HDC() const { return dc_; }

  private:
    HDC dc_;
};

template <class Change>
OwnedFont Changed(HFONT font, Change change) {
    LOGFONTA description = {};
    if (!GetObjectA(font, sizeof description, &description))
        return OwnedFont();
    change(description);
    return OwnedFont(CreateFontIndirectA(&description));
}

int WidthOf(HDC dc, HFONT font, const std::string& text) {
    SelectObject(dc, font);
    SIZE extent = {};
    GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &extent);
    return extent.cx;
}

// Where a row begins in its list's context, whether or not the list has moved the context's origin.
int LeftOf(const DRAWITEMSTRUCT& item) {
    POINT left = {-GetScrollPos(item.hwndItem, SB_HORZ), 0};
    DPtoLP(item.hDC, &left, 1);
    return left.x;
}

} // namespace

void FillBox(HDC dc, const RECT& box, COLORREF color) {
    SetDCBrushColor(dc, color);
    FillRect(dc, &box, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

std::optional<LRESULT> PageColors(UINT uMsg, WPARAM wParam) {
    switch (uMsg) {
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORLISTBOX:
        SetBkColor(reinterpret_cast<HDC>(wParam), pageColor);
        SetTextColor(reinterpret_cast<HDC>(wParam), pageTextColor);
        return reinterpret_cast<LRESULT>(GetStockObject(WHITE_BRUSH));
    default:
        return {};
    }
}

RowPainter::RowPainter(HWND hList)
    : plain(reinterpret_cast<HFONT>(SendMessageA(hList, WM_GETFONT, 0, 0))),
      bold(Changed(plain, [](LOGFONTA& font) { font.lfWeight = FW_BOLD; })),
      link(Changed(plain, [](LOGFONTA& font) { font.lfUnderline = TRUE; })) {}

std::vector<RowPainter::Run> RowPainter::RunsOf(const TroubleShootRow& row) const {
    const std::optional<LinkMarkup> markup = LinkOf(row);
    if (!markup)
        return {{row.text, row.heading ? bold.get() : plain, pageTextColor}};
    return {{markup->before, plain, pageTextColor},
            {markup->words, link.get(), linkColor},
            {markup->after, plain, pageTextColor}};
}

int RowPainter::Height() const {
    const MemoryContext dc;
    const SavedContext saved(dc);
    int height = 0;
    for (const HFONT font : {plain, bold.get(), link.get()}) {
        SelectObject(dc, font);
        TEXTMETRICA metrics = {};
        GetTextMetricsA(dc, &metrics);
        height = std::max(height, static_cast<int>(metrics.tmHeight));
    }
    return height;
}

int RowPainter::Width(const TroubleShootRow& row) const {
    const MemoryContext dc;
    const SavedContext saved(dc);
    int width = 2 * rowMargin;
    for (const Run& run : RunsOf(row))
        width += WidthOf(dc, run.font, run.text);
    return width;
}

std::optional<Span> RowPainter::LinkSpan(const TroubleShootRow& row) const {
    const std::vector<Run> runs = RunsOf(row);
    if (runs.size() < 2)
        return {};
    const MemoryContext dc;
    const SavedContext saved(dc);
    const int left = rowMargin + WidthOf(dc, runs[0].font, runs[0].text);
    return Span{left, left + WidthOf(dc, runs[1].font, runs[1].text)};
}

void RowPainter::Draw(const DRAWITEMSTRUCT& item, const TroubleShootRow& row) const {
    const SavedContext saved(item.hDC);
    FillBox(item.hDC, item.rcItem, pageColor);
    SetBkMode(item.hDC, TRANSPARENT);
    int left = LeftOf(item) + rowMargin;
    for (const Run& run : RunsOf(row)) {
        const int width = WidthOf(item.hDC, run.font, run.text);
        SetTextColor(item.hDC, run.color);
        TextOutA(item.hDC, left, item.rcItem.top, run.text.c_str(), static_cast<int>(run.text.size()));
        left += width;
    }
    if ((item.itemState & ODS_FOCUS) && !(item.itemState & ODS_NOFOCUSRECT))
        DrawFocusRect(item.hDC, &item.rcItem);
}
