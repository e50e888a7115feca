// A command line as a table: one row an option. For the lab's programs.
#pragma once

#include <cstdio>
#include <span>
#include <string>

template <typename Options>
struct OptionRow {
    const char* name;
    const char* value; // what it takes, null for a switch
    bool (*apply)(const std::string& value, Options& options);
    const char* help;
};

template <typename Options>
class OptionTable {
  public:
    OptionTable(const char* program, const char* usage, std::span<const OptionRow<Options>> rows)
        : program_(program), usage_(usage), rows_(rows) {}

    // False after having said what is wrong on stderr.
    bool Parse(int count, char** words, Options& options) const {
        for (int i = 1; i < count; i++) {
            const OptionRow<Options>* row = Find(words[i]);
            if (!row || (row->value && i + 1 >= count))
                return Complain(words[i]);
            const std::string value = row->value ? words[++i] : "";
            if (!row->apply(value, options))
                return Complain(row->name);
        }
        return true;
    }

    bool Complain(const std::string& word) const {
        std::fprintf(stderr, "%s: bad option %s\nusage: %s %s [options]\n", program_, word.c_str(), program_,
                     usage_);
        for (const OptionRow<Options>& row : rows_)
            std::fprintf(stderr, "  %-13s %-6s %s\n", row.name, row.value ? row.value : "", row.help);
        return false;
    }

  private:
    const OptionRow<Options>* Find(const std::string& name) const {
        for (const OptionRow<Options>& row : rows_)
            if (name == row.name)
                return &row;
        return nullptr;
    }

    const char* program_;
    const char* usage_;
    std::span<const OptionRow<Options>> rows_;
};
