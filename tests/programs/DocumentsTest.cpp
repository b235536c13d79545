// Pages of docs/reference that contain tables of the programs.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "CatalogueRows.h"
#include "DocumentPages.h"
#include "ResultCodes.h"
#include "shared/ExitCode.h"

TEST(Documents, TheKeysPageHasTheCatalogue) {
    const std::string table = catalogueMarkdown();
    ASSERT_GT(table.size(), 5000u);
    EXPECT_NE(std::string(kKeysPage).find("\n" + table), std::string::npos)
        << "docs/reference/configuration-keys.md is to have the output of bridgectl catalogue "
           "--markdown";
}

TEST(Documents, TheCodesPageHasTheResultCodes) {
    const std::string table = resultCodesMarkdown();
    ASSERT_GT(table.size(), 3000u);
    EXPECT_NE(std::string(kCodesPage).find("\n" + table + "\n"), std::string::npos)
        << "docs/reference/codes.md is to have the output of bridgectl explain --markdown";
}

TEST(Documents, TheCodesPageHasTheExitCodes) {
#define EXPECT_LINE(name, number, meaning)                                                        \
    EXPECT_NE(std::string(kCodesPage).find("| " #number " | " meaning " |\n"), std::string::npos) \
        << meaning;
    PROGRAM_EXIT_CODES(EXPECT_LINE)
#undef EXPECT_LINE
}

TEST(ResultCodes, EveryCodeHasADistinctMeaning) {
    std::set<std::string> meanings;
    for (const ResultCode& code : resultCodes()) {
        EXPECT_EQ(code.name, xerrName(code.code));
        EXPECT_FALSE(code.meaning.empty()) << code.name;
        EXPECT_TRUE(meanings.insert(code.meaning).second) << code.meaning;
    }
    EXPECT_EQ(meanings.size(), 133u);
}

TEST(ResultCodes, WindowsErrorsArriveAsTheirCodes) {
    std::size_t count = 0;
    for (const ResultCode& code : resultCodes()) {
        for (const std::int32_t error : code.windowsErrors) {
            EXPECT_EQ(xerrFromWindows(error), code.code) << error;
            ++count;
        }
    }
    EXPECT_EQ(count, 36u);
}

TEST(ResultCodes, AWindowsErrorWithoutAnEquivalentIsFound) {
    for (const std::int32_t error : {0, 1314, 2147483647}) {
        const XErr code = xerrFromWindows(error);
        const std::optional<ResultCode> found = findResultCode(std::to_string(code));
        ASSERT_TRUE(found.has_value()) << error;
        EXPECT_EQ(found->meaning.rfind("Windows error " + std::to_string(error), 0), 0u);
    }
}
