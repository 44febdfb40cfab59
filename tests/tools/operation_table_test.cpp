// The player's operation table covers every exported operation of the
// public header, with the header's parameter count.
#include "operation_table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

using namespace kryn::script;

namespace {

std::string publicHeader() {
    std::string here = __FILE__;
    std::string root = here.substr(0, here.rfind("/tests/"));
    std::ifstream in(root + "/include/kryn/kryn.h");
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace

TEST(OperationTable, IsSortedForTheLookup) {
    for (const OperationEntry* op = operationsBegin(); op + 1 < operationsEnd(); ++op) {
        EXPECT_LT(op->name, (op + 1)->name);
        EXPECT_EQ(findOperation(op->name), op);
    }
    EXPECT_EQ(findOperation("Init"), nullptr) << "Init is the player's own: it opens the engine";
    EXPECT_EQ(findOperation("Nope"), nullptr);
}

TEST(OperationTable, CoversEveryExportedOperationWithItsParameterCount) {
    const std::string header = publicHeader();
    ASSERT_FALSE(header.empty());
    const std::regex prototype(R"(KRYN_EXPORT ResultCode KRYN(\w+)\(([^)]*)\))");
    int checked = 0;
    for (std::sregex_iterator it(header.begin(), header.end(), prototype), end; it != end; ++it) {
        const std::string name = (*it)[1];
        const std::string params = (*it)[2];
        const OperationEntry* op = findOperation(name);
        ASSERT_NE(op, nullptr) << name << " is exported but the player cannot call it";
        // Parameters: commas + 1, minus the engine, minus the callback and
        // context the player supplies itself.
        size_t count = static_cast<size_t>(std::count(params.begin(), params.end(), ',')) + 1 - 1;
        if (params.find("OutputCallback") != std::string::npos) {
            count -= 2;
        }
        EXPECT_EQ(op->params.size(), count) << name;
        ++checked;
    }
    EXPECT_EQ(checked, operationsEnd() - operationsBegin());
}
