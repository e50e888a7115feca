// A modem's fields: in as text, out as text, one at a time.
#include "caseprint.h"
#include "modem/modemoptions.h"

#include <string>

namespace {

constexpr const char* hayes =
    "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t14400\n";

class ModemOptions : public testing::Test {
  protected:
    void Store(const std::string& options) { StoreModemOptions(record, options.c_str()); }
    std::string Copy() const {
        char buffer[ModemOptionsSize];
        std::fill(std::begin(buffer), std::end(buffer), '#');
        const int count = CopyModemOptions(record, buffer);
        EXPECT_TRUE(count == ModemOptionsSize || buffer[count] == '#') << "nothing behind the last tab";
        return {buffer, static_cast<size_t>(count)};
    }
    std::string Field(int index) const { return ModemOption(record, static_cast<ModemField>(index)); }

    COMCTL record;
};

TEST_F(ModemOptions, FreshObjectGivesOneTab) {
    EXPECT_EQ(Copy(), "\t");
    EXPECT_EQ(Field(0), "");
    EXPECT_EQ(Field(5), "");
}

TEST_F(ModemOptions, DefaultComesBackWithoutItsNewline) {
    Store(hayes);
    EXPECT_EQ(Copy(), "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t14400\t");
}

TEST_F(ModemOptions, FieldsAreFoundByTheirPlaces) {
    Store(hayes);
    EXPECT_EQ(ModemOption(record, ModemField::Title), "Hayes Compatible");
    EXPECT_EQ(ModemOption(record, ModemField::Init), "ATX4E1V1S7=60&C1^M");
    EXPECT_EQ(ModemOption(record, ModemField::DialTone), "ATDT");
    EXPECT_EQ(ModemOption(record, ModemField::DialPulse), "ATDP");
    EXPECT_EQ(ModemOption(record, ModemField::Answer), "ATS0=2^M");
    EXPECT_EQ(ModemOption(record, ModemField::HangUp), "~~+++~~ATH0^M");
    EXPECT_EQ(ModemOption(record, ModemField::LineSpeed), "14400");
    EXPECT_EQ(Field(7), "") << "the strings have run out";
    EXPECT_EQ(Field(200), "");
    EXPECT_EQ(Field(-1), "Hayes Compatible");
}

struct ModeCase {
    int mode;
    const char* prefix;
};

TEST_F(ModemOptions, DialModePicksThePrefix) {
    Store(hayes);
    const ModeCase cases[] = {{0, "ATDT"},
                              {1, "ATDP"},
                              {2, "ATS0=2^M"},
                              {5, ""},
                              {INT_MAX, ""},
                              {-1, "ATX4E1V1S7=60&C1^M"},
                              {INT_MIN, "Hayes Compatible"}};
    for (const ModeCase& row : cases) {
        record.nDialMode = row.mode;
        EXPECT_EQ(ModemOption(record, DialPrefixField(record)), row.prefix) << row.mode;
    }
}

struct StoreCase {
    const char* name;
    std::string options;
    std::string back;
};

const StoreCase stores[] = {
    {"OneField", "Modem", "Modem\t"},
    {"ClosingTab", "Modem\tATZ\t", "Modem\tATZ\t"},
    {"EmptyText", "", "\t"},
    {"EmptyFieldEndsTheRow", "Modem\t\tATDT\tATDP", "Modem\t"},
    {"EmptyTitleStaysInFront", "\tATZ", "\tATZ\t"},
    {"ControlCharactersEndFields",
     "A\x01"
     "B\x1F"
     "C",
     "A\tB\tC\t"},
    {"UpperHalfEndsFields",
     "M\xFC"
     "ller\x80X",
     "M\tller\tX\t"},
    {"LastOfTheLowerHalfStays", "A\x7F", "A\x7F\t"},
    {"LineEndIsAField", "A\r\nB", "A\t"},
};

class ModemOptionsStore : public ModemOptions, public testing::WithParamInterface<StoreCase> {};

TEST_P(ModemOptionsStore, ComesBackAs) {
    Store(GetParam().options);
    EXPECT_EQ(Copy(), GetParam().back);
}

RUN_TABLE(ModemOptionsStore, stores);

TEST_F(ModemOptions, StoredAgainNothingOfTheOldStays) {
    Store(hayes);
    Store("A\tB");
    EXPECT_EQ(Copy(), "A\tB\t");
    EXPECT_EQ(Field(2), "");
}

TEST_F(ModemOptions, WhatDoesNotFitIsCut) {
    Store(std::string(198, 'a'));
    EXPECT_EQ(Copy(), std::string(198, 'a') + "\t");
    Store(std::string(199, 'b'));
    EXPECT_EQ(Copy(), std::string(198, 'b') + "\t");
    Store("x\t" + std::string(5000, 'c'));
    EXPECT_EQ(Copy(), "x\t" + std::string(196, 'c') + "\t");
    EXPECT_EQ(record.szName[0], '\0') << "the field behind";
}

} // namespace
