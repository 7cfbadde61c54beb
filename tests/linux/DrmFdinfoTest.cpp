#include "platform/linux/DrmFdinfo.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace norvane {
namespace {

TEST(DrmFdinfo, OfTimedEngines) {
    const auto info = parseDrmFdinfo(
        "pos:\t0\n"
        "flags:\t02100002\n"
        "mnt_id:\t27\n"
        "ino:\t733\n"
        "drm-driver:\ti915\n"
        "drm-client-id:\t42\n"
        "drm-pdev:\t0000:00:02.0\n"
        "drm-total-system0:\t1024 KiB\n"
        "drm-engine-render:\t9288864723 ns\n"
        "drm-engine-video:\t0 ns\n"
        "drm-engine-capacity-video:\t2\n");
    ASSERT_TRUE(info);
    EXPECT_EQ(info->clientId, "42");
    EXPECT_EQ(info->pdev, "0000:00:02.0");
    const DrmEngines want{{"render", {9288864723, {}, {}, 1}}, {"video", {0, {}, {}, 2}}};
    EXPECT_EQ(info->engines, want);
}

TEST(DrmFdinfo, OfCountedEngines) {
    const auto info = parseDrmFdinfo(
        "drm-engine-capacity-ccs:   4\n"
        "drm-client-id: 7\n"
        "drm-cycles-ccs:            1000\n"
        "drm-total-cycles-ccs:      7655183225\n"
        "drm-cycles-bcs: 5");
    ASSERT_TRUE(info);
    EXPECT_EQ(info->pdev, "");
    const DrmEngines want{{"ccs", {{}, 1000, 7655183225, 4}}, {"bcs", {{}, 5, {}, 1}}};
    EXPECT_EQ(info->engines, want);
    EXPECT_TRUE(info->engines.at("ccs").isMeasured());
    EXPECT_FALSE(info->engines.at("bcs").isMeasured()) << "cycles of how many?";
}

TEST(DrmFdinfo, ReadsOneEngineAsFarAsItCanBeUnderstood) {
    struct Case {
        const char* name;
        const char* lines;
        DrmEngine want;
    };
    for (const Case& c : {
             Case{"no unit", "drm-engine-x: 5\n", {5, {}, {}, 1}},
             Case{"another unit", "drm-engine-x: 5 us\n", {}},
             Case{"a percentage", "drm-engine-x: 5%\n", {}},
             Case{"something behind the unit", "drm-engine-x: 5 ns 6\n", {}},
             Case{"cycles with a unit", "drm-cycles-x: 5 ns\n", {}},
             Case{"below 0", "drm-engine-x: -5 ns\n", {}},
             Case{"too large", "drm-engine-x: 18446744073709551616 ns\n", {}},
             Case{"the largest", "drm-engine-x: 18446744073709551615 ns\n", {UINT64_MAX, {}, {}, 1}},
             Case{"nothing at all", "drm-engine-x:\n", {}},
             Case{"twice", "drm-engine-x: 5 ns\ndrm-engine-x: 6 ns\n", {5, {}, {}, 1}},
             Case{"no blank before the number", "drm-engine-x:5 ns\r\n", {5, {}, {}, 1}},
             Case{"capacity 0", "drm-engine-x: 5 ns\ndrm-engine-capacity-x: 0\n", {5, {}, {}, 1}},
             Case{"capacity that is none",
                  "drm-engine-x: 5 ns\ndrm-engine-capacity-x: many\n",
                  {5, {}, {}, 1}},
         }) {
        const auto info = parseDrmFdinfo(std::string("drm-client-id: 1\n") + c.lines);
        ASSERT_TRUE(info) << c.name;
        const auto engine = info->engines.find("x");
        EXPECT_EQ(engine == info->engines.end() ? DrmEngine{} : engine->second, c.want) << c.name;
    }
}

TEST(DrmFdinfo, OfAnythingElseIsNone) {
    for (const std::string& text :
         {std::string(), std::string("pos:\t0\nflags:\t0100002\n"), std::string("drm-engine-render: 5 ns\n"),
          std::string("drm-client-id:\ndrm-client-id: \t \n"), std::string("drm-client-id 5\n"),
          std::string("\0\0:\0\n::::\n\xff\xfe:\x80\n", 15)}) {
        EXPECT_FALSE(parseDrmFdinfo(text)) << text;
    }
    const auto nameless = parseDrmFdinfo("drm-client-id: 1\ndrm-engine-: 5 ns\ndrm-engine-capacity-: 2\n");
    ASSERT_TRUE(nameless);
    EXPECT_TRUE(std::none_of(nameless->engines.begin(), nameless->engines.end(),
                             [](const auto& engine) { return engine.second.isMeasured(); }));
}

}  // namespace
}  // namespace norvane
