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

TEST(MParameterDirectory, FindsNothingInNothingAndTheOnlyOneForEverything) {
    MParameterDirectory directory;
    EXPECT_EQ(directory.Find(0).parameter, nullptr);
    Add(directory, 10);
    for (const std::uint32_t identifier : {0u, 9u, 10u, 11u, 0xFFFFFFFFu}) {
        EXPECT_EQ(directory.Find(identifier).parameter, &directory.At(0)) << identifier;
    }
    EXPECT_EQ(directory.Find(3).offset, 0u) << "below the first one there is no offset";
    EXPECT_EQ(directory.Find(13).offset, 3u);
    EXPECT_THROW(Add(directory, 10), MException);
    EXPECT_EQ(directory.Count(), 1);
}

TEST(MParameterDirectory, FindsTheLargestFirstIdentifierNotAbove) {
    for (int count = 2; count < 20; ++count) {
        MParameterDirectory directory;
        for (int i = count; i > 0; --i) Add(directory, static_cast<std::uint32_t>(i * i));
        int expected = 0;
        for (std::uint32_t identifier = 0; identifier < 500; ++identifier) {
            const int next = std::min(expected + 1, count - 1);
            if (directory.At(next).FirstIdentifier() <= identifier) expected = next;
            ASSERT_EQ(directory.Find(identifier).parameter, &directory.At(expected));
        }
    }
}
