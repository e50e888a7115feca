// ISpecifyPropertyPages from a list of class identifiers.
#pragma once

#include "interfaces.h"

#include <ocidl.h>

#include <vector>

HRESULT GivePages(const std::vector<CLSID>& pages, CAUUID* given) noexcept;

class PropertyPages : public ISpecifyPropertyPages {
  public:
    HRESULT STDMETHODCALLTYPE GetPages(CAUUID* given) override;

  protected:
    virtual ~PropertyPages() = default;

    // In the order in which the frame shows them.
    virtual std::vector<CLSID> Pages() const = 0;
};
