// CConnectionProperties: the port or modem of a connection, and the number that the modem dials.
#pragma once

#include "connectionchoice.h"
#include "core/dialogrows.h"
#include "core/mydialog.h"
#include "phonenumber.h"
#include "TapiApp.h"

#include <functional>
#include <string>
#include <vector>

class CConnectionProperties final : public CMyDialog {
  public:
    using PortNames = std::function<std::vector<std::string>()>;

    // The choice is changed by OK alone; it and the service must outlive the dialog. portNames gives ports
    // and modems in the order of the list.
    CConnectionProperties(HWND hOwner, ConnectionChoice& choice, CTapiApp& tapi, PortNames portNames);

  private:
    // What the items of the number show.
    struct NumberFields {
        bool useAreaCode = false;
        int country = -1; // its row, or none
        std::string areaCode;
        std::string number;

        bool operator==(const NumberFields&) const = default;
    };

    static const InitStep<CConnectionProperties> initSteps[];
    static const CommandRow<CConnectionProperties> commands[];

    bool OnInitDialog() override;
    bool OnCommand(int nControl, int nNotification) override;

    void LimitTexts();
    void InitTab();
    void AddPorts();
    void AddCountries();
    void ParseNumber();
    void TakeLocation();
    void SelectCountry();
    void ShowChoice();
    void SelectPort();

    void OnOK();
    void OnCancel();
    void OnConfigure();
    void OnClickedUseAreaCode();
    void OnSelEndOK();

    int SelectedModem() const;
    bool IsAreaCodeUsed() const;
    NumberFields Shown() const;
    bool IsNumberChanged() const;
    std::string EnteredNumber() const;
    void ConfigurePort();

    ConnectionChoice* pChoice;
    ConnectionChoice edited;
    CTapiApp* pTapi;
    PortNames portNames;
    NumberFields shown; // at first, as is the port's row
    int shownPort = -1;

    bool bUseAreaCode = false;
    DWORD dwCountryID = 1;
    std::string szAreaCode;
    std::string szPhoneNumber;
};
