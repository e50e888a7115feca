// The page that tells what this is. Nothing can be set.
#pragma once

#include "tarnpage.h"

class CPropAbout final : public Unknown<CPropAbout, TarnPage> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyPage>>;

  private:
    const PageFacts& Facts() const override;
    const char* ApplyTrace() const override { return "CPropAbout::Apply\n"; }
    void OnPrepare() override;
    void OnControl(ITarnComm&) override {}
    Setters Values() const override { return {}; }
};
