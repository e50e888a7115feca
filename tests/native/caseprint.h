// Tables of cases: each case has a name, which becomes the name of its test.
#pragma once

#include <gtest/gtest.h>

#include <string>

template <class Case>
std::string CaseName(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

#define RUN_TABLE(Suite, rows)                                                                               \
    INSTANTIATE_TEST_SUITE_P(Rows, Suite, testing::ValuesIn(rows), CaseName<Suite::ParamType>)
