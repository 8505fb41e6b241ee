// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "plugin/parameters/MParameterDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace {

class Parameter : public ParameterSpecialMainBase {
public:
    explicit Parameter(std::uint32_t identifier)
        : ParameterSpecialMainBase({identifier, "id", "name", nullptr}) {}

    void SaveObject(MXMLNode /*node*/) const override {}
    bool LoadObject(MXMLNode /*node*/) override { return false; }
};

void Add(MParameterDirectory& directory, std::uint32_t identifier) {
    directory.Add(std::make_unique<Parameter>(identifier));
}

}  // namespace

TEST(MParameterDirectory, FindsTheLargestFirstIdentifierNotAboveOrTheFirst) {
    EXPECT_EQ(MParameterDirectory().Find(0).parameter, nullptr);
    for (int count = 1; count < 20; ++count) {
        MParameterDirectory directory;
        for (int i = count; i > 0; --i) Add(directory, static_cast<std::uint32_t>(i * i));
        int expected = 0;
        for (std::uint32_t identifier = 0; identifier < 500; ++identifier) {
            const int next = std::min(expected + 1, count - 1);
            if (directory.At(next).FirstIdentifier() <= identifier) expected = next;
            const auto [parameter, offset] = directory.Find(identifier);
            ASSERT_EQ(parameter, &directory.At(expected));
            ASSERT_EQ(offset, identifier - std::min(identifier, parameter->FirstIdentifier()));
        }
        EXPECT_THROW(Add(directory, 1), MException);
        EXPECT_EQ(directory.Count(), count);
    }
}
