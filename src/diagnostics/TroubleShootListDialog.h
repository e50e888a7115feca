// CTroubleShootListDialog: a page of the troubleshooter that shows rows. They may have links in them.
#pragma once

#include "core/mydialog.h"
#include "troubleshootpaint.h"
#include "windowhook.h"

class CTroubleShootListDialog final : public CMyDialog {
  public:
    CTroubleShootListDialog(HWND hFrame, TroubleShootRows rows);

  private:
    bool OnInitDialog() override;
    bool OnCommand(int nControl, int nNotification) override;

    void FillList(HWND hList);
    std::optional<LRESULT> AnswerForPage(UINT uMsg, WPARAM wParam, LPARAM lParam);
    std::optional<LRESULT> AnswerForList(UINT uMsg, WPARAM wParam, LPARAM lParam);

    const std::string* TargetAt(POINT at) const;
    void ShowTarget(const std::string& target);
    void FollowSelected();

    struct Row {
        TroubleShootRow row;
        std::string target;
        Span words = {}; // empty: no link
    };

    TroubleShootRows fields;
    std::vector<Row> rows;
    std::optional<RowPainter> painter;
    WindowHook page;
    WindowHook list;
};
