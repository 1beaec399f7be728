#include <android/log.h>
#include <gtest/gtest.h>
#include <host/Host.h>
#include <unistd.h>

#include <string>

TEST(Log, GoesToStderrUnlessThereIsASink) {
    std::string taken;
    const host::LogSink previous = host::setLogSink([&](int priority, std::string_view tag, std::string_view text) {
        taken = std::to_string(priority) + " " + std::string(tag) + " " + std::string(text);
    });
    __android_log_print(ANDROID_LOG_INFO, "VIGManager", "%d", 7);
    host::setLogSink(previous);
    const std::string longText(100'000, 'x');
    testing::internal::CaptureStderr();
    EXPECT_EQ(__android_log_print(ANDROID_LOG_ERROR, "VIG", "%s", longText.c_str()), 100'000);
    char prefix[32];
    snprintf(prefix, sizeof prefix, "E/VIG     (%5d): ", getpid());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), prefix + longText + "\n");
    EXPECT_EQ(taken, "4 VIGManager 7");
}
