#include "dashboard/FeedbackAddress.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

TEST(FeedbackAddress, BecomesAURLWhereItCanStandInOne) {
    struct Case {
        std::string_view address;
        std::optional<std::string> url;
    };
    for (const Case& c :
         {Case{"a@b", "mailto:a@b"},
          {"first.last+tag_x-1@mail.example.org", "mailto:first.last+tag_x-1@mail.example.org"},
          {kFeedbackAddress, "mailto:" + std::string(kFeedbackAddress)},
          {"", std::nullopt},
          {"a@", std::nullopt},
          {"@b", std::nullopt},
          {"nobody", std::nullopt},
          {"a@b@c", std::nullopt},
          {"a@b?subject=x", std::nullopt},
          {"a@b\n", std::nullopt},
          {"ä@b", std::nullopt}}) {
        EXPECT_EQ(feedbackURL(c.address), c.url) << c.address;
    }
}

}  // namespace
}  // namespace norvane
