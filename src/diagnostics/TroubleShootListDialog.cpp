#include "TroubleShootListDialog.h"

#include "troubleshootitems.h"

#include <algorithm>

namespace {

constexpr size_t shownTargetSize = 1024; // characters

} // namespace

CTroubleShootListDialog::CTroubleShootListDialog(HWND hFrame, TroubleShootRows shown)
    : CMyDialog(hFrame, TroubleShootListTemplate), fields(std::move(shown)) {}

// The frame keeps the focus.
bool CTroubleShootListDialog::OnInitDialog() {
    const HWND hList = GetDlgItem(Window(), List_Rows);
    painter.emplace(hList);
    page.Set(Window(),
             [this](UINT uMsg, WPARAM wParam, LPARAM lParam) { return AnswerForPage(uMsg, wParam, lParam); });
    list.Set(hList,
             [this](UINT uMsg, WPARAM wParam, LPARAM lParam) { return AnswerForList(uMsg, wParam, lParam); });
    FillList(hList);
    return false;
}

// It ends with its frame.
bool CTroubleShootListDialog::OnCommand(int, int) {
    return false;
}

// A row that is wider than the page can be scrolled to its end.
void CTroubleShootListDialog::FillList(HWND hList) {
    int widest = 0;
    SendMessageA(hList, LB_SETITEMHEIGHT, 0, painter->Height());
    for (const std::string& text : fields) {
        const TroubleShootRow row = RowOf(text);
        const std::optional<LinkMarkup> link = LinkOf(row);
        rows.push_back({row, link ? link->target : "", painter->LinkSpan(row).value_or(Span{})});
        widest = std::max(widest, painter->Width(row));
        SendMessageA(hList, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    SendMessageA(hList, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest), 0);
}

std::optional<LRESULT> CTroubleShootListDialog::AnswerForPage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_SIZE) {
        SetWindowPos(list.Window(), nullptr, 0, 0, LOWORD(lParam), HIWORD(lParam),
                     SWP_NOZORDER | SWP_NOACTIVATE);
        return 0;
    }
    if (uMsg != WM_DRAWITEM)
        return PageColors(uMsg, wParam);
    const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    painter->Draw(item, item.itemID < rows.size() ? rows[item.itemID].row : TroubleShootRow{false, ""});
    return TRUE;
}

std::optional<LRESULT> CTroubleShootListDialog::AnswerForList(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    switch (uMsg) {
    case WM_SETCURSOR: // a move of the mouse follows, and sets it
        return LOWORD(lParam) == HTCLIENT ? std::optional<LRESULT>(TRUE) : std::nullopt;
    case WM_MOUSEMOVE:
        SetCursor(LoadCursorA(nullptr, TargetAt(PointOf(lParam)) ? IDC_HAND : IDC_ARROW));
        return {};
    case WM_LBUTTONDOWN:
        if (const std::string* target = TargetAt(PointOf(lParam))) {
            ShowTarget(*target);
            return 0;
        }
        return {};
    case WM_KEYDOWN:
        if (wParam == VK_SPACE)
            FollowSelected();
        return {};
    default:
        return {};
    }
}

const std::string* CTroubleShootListDialog::TargetAt(POINT at) const {
    const LRESULT found = SendMessageA(list.Window(), LB_ITEMFROMPOINT, 0, MAKELPARAM(at.x, at.y));
    const bool isOutside = HIWORD(found);
    if (isOutside || LOWORD(found) >= rows.size())
        return nullptr;
    const Row& row = rows[LOWORD(found)];
    const int x = at.x + GetScrollPos(list.Window(), SB_HORZ);
    return x >= row.words.left && x < row.words.right ? &row.target : nullptr;
}

void CTroubleShootListDialog::ShowTarget(const std::string& target) {
    MessageBoxA(GetAncestor(Window(), GA_ROOT), target.substr(0, shownTargetSize).c_str(),
                "Communications troubleshooting", MB_OK);
}

void CTroubleShootListDialog::FollowSelected() {
    const LRESULT selected = SendMessageA(list.Window(), LB_GETCURSEL, 0, 0);
    if (selected < 0 || static_cast<size_t>(selected) >= rows.size())
        return;
    const Row& row = rows[static_cast<size_t>(selected)];
    if (row.words.right > row.words.left)
        ShowTarget(row.target);
}
