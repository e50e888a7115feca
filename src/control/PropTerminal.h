// The page of the terminal: following the cursor, echo, size, capture.
#pragma once

#include "tarnpage.h"

class CPropTerminal final : public Unknown<CPropTerminal, TarnPage> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyPage>>;

  private:
    static const CheckRow shownChecks[];

    const PageFacts& Facts() const override;
    const char* ApplyTrace() const override { return "CPropTerminal::Apply\n"; }
    void OnPrepare() override;
    void OnControl(ITarnComm& control) override;
    Setters Values() const override;

    Setter SetsCheck(int item) const;
    Setter SetsCaptureMode() const;
};
