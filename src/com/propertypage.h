// IPropertyPage for a dialog template. The page fills its controls when its dialog is made or other objects
// are given, is dirty from the first change that a user makes in a control, and passes everything on at
// Apply.
//
// The frame may take the page apart in any call to its site, and an object may do so while it is being set.
#pragma once

#include "interfaces.h"

#include <ocidl.h>
#include <wrl/client.h>

#include <vector>

struct PageFacts {
    int dialogTemplate; // a child window with DS_CONTROL, not visible
    const wchar_t* title;
    const wchar_t* docString;
};

class PropertyPage : public IPropertyPage {
  public:
    HRESULT STDMETHODCALLTYPE SetPageSite(IPropertyPageSite* site) override;
    HRESULT STDMETHODCALLTYPE Activate(HWND parent, LPCRECT place, BOOL modal) override;
    HRESULT STDMETHODCALLTYPE Deactivate() override;
    HRESULT STDMETHODCALLTYPE GetPageInfo(PROPPAGEINFO* info) override;
    HRESULT STDMETHODCALLTYPE SetObjects(ULONG count, IUnknown** objects) override;
    HRESULT STDMETHODCALLTYPE Show(UINT command) override;
    HRESULT STDMETHODCALLTYPE Move(LPCRECT place) override;
    HRESULT STDMETHODCALLTYPE IsPageDirty() override;
    HRESULT STDMETHODCALLTYPE Apply() override;
    HRESULT STDMETHODCALLTYPE Help(LPCOLESTR folder) override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) override;

    void LetGo(); // before the end of the object

  protected:
    using Objects = std::vector<Microsoft::WRL::ComPtr<IUnknown>>;

    virtual ~PropertyPage() = default;

    virtual const PageFacts& Facts() const = 0;
    // The controls from the first object; null: there is none.
    virtual void OnFill(IUnknown* first) = 0;
    // The objects from the controls.
    virtual HRESULT OnApply(const Objects& objects) = 0;
    // What a user's change of one control does to others.
    virtual void OnChanged(int /*item*/) {}

    HWND Dialog() const { return dialog_; } // null while there is none

  private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void OnCommand(int item, int notification, HWND control);
    void Fill();
    void DropDialog();
    void Soil();

    Microsoft::WRL::ComPtr<IPropertyPageSite> site_;
    Objects objects_;
    HWND dialog_ = nullptr;
    bool filling_ = false;
    bool dirty_ = false;
};
