// The page of the port: its name and settings, buffers, replacement of bad bytes, events.
#pragma once

#include "tarnpage.h"

class CPropCommunications final : public Unknown<CPropCommunications, TarnPage> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyPage>>;

  private:
    const PageFacts& Facts() const override;
    const char* ApplyTrace() const override { return "CPropCommunications::Apply\n"; }
    void OnPrepare() override;
    void OnControl(ITarnComm& control) override;
    void OnChanged(int item) override;
    Setters Values() const override;

    void ShowSettings(const std::string& settings) const;
    void ShowThreshold(LONG threshold) const;
    void ShowReplacement(const std::string& replacement) const;
    void OnTriggersReceive() const;
    std::string SettingsText() const;
    std::string ReplacementText() const;
};
