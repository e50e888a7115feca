// The page of the log: whether it is written, and what goes into it.
#pragma once

#include "tarnpage.h"

class CPropWireTap final : public Unknown<CPropWireTap, TarnPage> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyPage>>;

  private:
    static const CheckRow checks[];

    const PageFacts& Facts() const override;
    const char* ApplyTrace() const override { return "CPropWireTap::Apply\n"; }
    void OnControl(ITarnComm& control) override;
    void OnChanged(int item) override;
    Setters Values() const override;

    void EnableSubjects() const;
};
