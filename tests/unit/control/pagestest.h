// A property page in a frame of the test's, on a control with its log.
#pragma once

#include "controltest.h"

#include "com/unknown.h"
#include "unit/dialogs/dialoguser.h"

#include <ocidl.h>

#include <string>
#include <vector>

namespace pages {

using dialogs::Texts;
using host::ControlTest;

using Page = ComPtr<IPropertyPage>;

template <class Class>
Page Make() {
    ComPtr<Class> page;
    EXPECT_EQ(NewObject(page), S_OK);
    return Page(page.Get());
}

class Pages : public ControlTest {
  protected:
    void SetUp() override {
        ControlTest::SetUp();
        frame = dialogs::MakeOwner();
    }
    void TearDown() override {
        page.Reset();
        frame.reset();
    }

    // A page of the kind on the controls; what was logged before is forgotten.
    void Open(const Page& made, const std::vector<IUnknown*>& given) {
        page = made;
        std::vector<IUnknown*> objects = given;
        ASSERT_EQ(page->SetObjects(static_cast<ULONG>(objects.size()), objects.data()), S_OK);
        const RECT place = {0, 0, 420, 250};
        StartLogAnew();
        ASSERT_EQ(page->Activate(frame.get(), &place, FALSE), S_OK);
        page->Show(SW_SHOW);
        dialog = GetWindow(frame.get(), GW_CHILD);
    }
    void Open(const Page& made) { Open(made, {static_cast<ITarnComm*>(control.Get())}); }

    void Refill() {
        IUnknown* object = static_cast<ITarnComm*>(control.Get());
        ASSERT_EQ(page->SetObjects(1, &object), S_OK);
    }

    // Lines of the control in the log, without its name.
    static Texts ControlLines() {
        const std::string start = "<time> TarnComm.";
        std::string log = LogText();
        Texts lines;
        for (size_t at = log.find(start); at != log.npos; at = log.find(start, at)) {
            at += start.size();
            lines.push_back(log.substr(at, log.find('\r', at) - at));
        }
        return lines;
    }
    // Of the properties that the lines are of.
    static Texts NamesOf(const Texts& lines) {
        Texts names;
        for (const std::string& line : lines)
            names.push_back(line.substr(0, line.find(' ')));
        return names;
    }
    Texts LinesOfApply() {
        StartLogAnew();
        EXPECT_EQ(page->Apply(), S_OK);
        return ControlLines();
    }
    bool IsDirty() const { return page->IsPageDirty() == S_OK; }

    // As a click on the row.
    void Choose(int item, int row) const {
        dialogs::Tell(dialog, item, CB_SETCURSEL, static_cast<WPARAM>(row));
        dialogs::Notify(dialog, item, CBN_SELCHANGE);
    }

    dialogs::Window frame;
    Page page;
    HWND dialog = nullptr;
};

} // namespace pages
