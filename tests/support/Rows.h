#ifndef TESTS_ROWS_H
#define TESTS_ROWS_H

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <type_traits>

// Declares a fixture whose test runs for each row of a table: a test case per row, named by the
// row's member `name`. Use it in the namespace of the rows' type.
//
//     struct Number { const char* name; const char* text; int number; };
//     const Number kNumbers[] = {{"One", "1", 1}, {"Two", "2", 2}};
//     CASE_PER_ROW(NumberTest, ::testing::Test, kNumbers);
//     TEST_P(NumberTest, IsRead) { EXPECT_EQ(read(GetParam().text), GetParam().number); }
#define CASE_PER_ROW(fixture, base, rows)                                                       \
    class fixture : public base,                                                                \
                    public ::testing::WithParamInterface<std::decay_t<decltype((rows)[0])>> {}; \
    void PrintTo(const fixture::ParamType& row, std::ostream* out) { *out << row.name; }        \
    INSTANTIATE_TEST_SUITE_P(, fixture, ::testing::ValuesIn(rows),                              \
                             [](const auto& info) { return std::string(info.param.name); })

#endif
