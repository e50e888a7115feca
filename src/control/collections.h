// Collections of strings for scripts: the ports of the machine, the dialling locations. The host may keep
// them longer than the control.
#pragma once

#include "ansi.h"
#include "com/dispatch.h"
#include "com/enumvariant.h"
#include "com/unknown.h"
#include "modem/portlist.h"
#include "TarnLink.h"

#include <string>
#include <vector>

// Source: what is in the collection now, asked on every use: std::vector<std::wstring> Texts().
template <class Face, class Source>
class StringCollection final : public Unknown<StringCollection<Face, Source>, Dual<Face>> {
  public:
    using Faces = FaceTable<FaceRow<Face>, FaceRow<IDispatch, Face>>;

    Source& Contents() { return source_; }

    STDMETHOD(get__NewEnum)(IUnknown** enumerator) override {
        if (!enumerator)
            return E_POINTER;
        *enumerator = nullptr;
        return AsResult([&] { return MakeStringEnumerator(source_.Texts(), enumerator); });
    }

    // The first has the index 1.
    STDMETHOD(get_Item)(LONG index, BSTR* text) override {
        if (!text)
            return E_POINTER;
        *text = nullptr;
        if (index < 1)
            return E_INVALIDARG;
        return AsResult([&] {
            const std::vector<std::wstring> texts = source_.Texts();
            const auto place = static_cast<size_t>(index) - 1;
            if (place >= texts.size())
                return E_FAIL;
            *text = MakeBstr(texts[place]);
            return S_OK;
        });
    }

    STDMETHOD(get_Count)(LONG* count) override {
        if (!count)
            return E_POINTER;
        *count = 0;
        return AsResult([&] {
            *count = static_cast<LONG>(source_.Texts().size());
            return S_OK;
        });
    }

  private:
    Source source_;
};

inline std::vector<std::wstring> WideTexts(const std::vector<std::string>& texts) {
    std::vector<std::wstring> wide;
    wide.reserve(texts.size());
    for (const std::string& text : texts)
        wide.push_back(WideOf(text));
    return wide;
}

// The ports as they are at each use.
class PortTexts {
  public:
    // The modems are among them for as long as the service is there. Once it is gone the list stays as it
    // was.
    void Attach(const CTapiApp& telephony) { telephony_ = &telephony; }
    void Detach() { telephony_ = nullptr; }

    const std::vector<std::string>& Names() {
        if (telephony_)
            ports_.PortAddPorts(telephony_);
        return ports_.Names();
    }
    std::vector<std::wstring> Texts() { return WideTexts(Names()); }

  private:
    const CTapiApp* telephony_ = nullptr;
    PortList ports_;
};

// The locations as they were when they were read: once. A service that gives none is asked again.
class LocationTexts {
  public:
    void Read(const CTapiApp& telephony) {
        if (texts_.empty())
            texts_ = WideTexts(telephony.Locations());
    }
    const std::vector<std::wstring>& Texts() const { return texts_; }

  private:
    std::vector<std::wstring> texts_;
};

using CCommPort = StringCollection<ICommPort, PortTexts>;
using CTapiLocation = StringCollection<ITapiLocation, LocationTexts>;
